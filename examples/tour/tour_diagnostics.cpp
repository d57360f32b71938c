#include "examples/tour/tour.h"

void tourDiagnostics() {
}

#include "examples/tour/tour.h"

void tourUndo() {
}

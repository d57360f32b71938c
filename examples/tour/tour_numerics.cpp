#include "examples/tour/tour.h"

void tourNumerics() {
}

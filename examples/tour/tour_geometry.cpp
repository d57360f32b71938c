#include "examples/tour/tour.h"

void tourGeometry() {
}

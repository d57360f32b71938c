#include "examples/tour/tour.h"

void tourContainers() {
}

#include "examples/tour/tour.h"

void tourFactorisations() {
}

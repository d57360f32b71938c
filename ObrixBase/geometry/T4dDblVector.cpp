#include "ObrixBase/geometry/T4dDblVector.h"

const T4dDblVector T4dDblVector::identity;

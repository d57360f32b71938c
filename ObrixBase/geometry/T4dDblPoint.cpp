#include "ObrixBase/geometry/T4dDblPoint.h"

const T4dDblPoint T4dDblPoint::origin;

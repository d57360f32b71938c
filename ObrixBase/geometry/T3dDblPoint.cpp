#include "ObrixBase/geometry/T3dDblPoint.h"

const T3dDblPoint T3dDblPoint::origin;

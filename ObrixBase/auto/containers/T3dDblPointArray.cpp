#include "ObrixBase/auto/containers/T3dDblPointArray.h"

TboundingBox T3dDblPointArray::boundingBox() const noexcept {
    TboundingBox box;
    return box.extendIt(coordinates(), static_cast<std::size_t>(length()));
}

T3dDblPointArray& T3dDblPointArray::transformIt(const T4dDblMatrix& m) noexcept {
    for (T3dDblPoint& p : *this)
        p.postmultBy(m);
    return *this;
}

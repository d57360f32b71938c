// The factorisation messages: catalogue 5 of the numeric error handler, its codes and its
// counted registrar RWFACTInit. Every unit that uses a factorisation class holds a registrar
// through this header, so the catalogue is registered before anything can raise from it.
#ifndef OBRIX_MATH_FACTERROR_H
#define OBRIX_MATH_FACTERROR_H

#include <cstdint>

#include "ObrixBase/ObrixExport.h"
#include "ObrixBase/math/MathError.h"

/// Catalogue 5 (factorisations): codes `FACT_INTERNAL` (0x5000) to `FACT_PIVOTCLASS` (0x5012),
/// raised with severity request MATH_DEFAULT and tag MATH_TAG_SHORTHAND. Entries marked "continue"
/// only report.
enum MathCatalogue5 : std::uint16_t {
    FACT_INTERNAL = 0x5000,      ///< continue
    FACT_NOCONDITION = 0x5001,   ///< continue: "Condition number not calculated"
    FACT_BADLENGTH = 0x5002,     ///< (length, expected)
    FACT_NONREALDIAG = 0x5003,   ///< continue
    FACT_PERMUTELENGTH = 0x5004, ///< (length, expected)
    FACT_SHIFTDIR = 0x5005,
    FACT_SHIFTCOLS = 0x5006,  ///< (l, k)
    FACT_DATAHEIGHT = 0x5007, ///< (height, order)
    FACT_ROTLENGTH = 0x5008,  ///< (length, expected)
    FACT_RESIDUALS = 0x5009,  ///< (residuals, data columns)
    FACT_NORMALEQNS = 0x500A,
    FACT_NODATA = 0x500B, ///< (index, data columns)
    FACT_VECSTRIDE = 0x500C,
    FACT_NSQUARE = 0x500D,   ///< (rows, cols)
    FACT_BANDWIDTH = 0x500E, ///< (bandwidth, rows, cols)
    FACT_REFACTOR = 0x500F,  ///< continue
    FACT_FEWROWS = 0x5010,   ///< (rows, cols)
    FACT_NOTFACTORED = 0x5011,
    FACT_PIVOTCLASS = 0x5012, ///< (value)
};

/// Counted registrar of catalogue 5; works as RWMATHInit.
class OBRIX_API RWFACTInit : public MathCatalogueRegistrar<RWFACTInit> {
    friend class MathCatalogueRegistrar<RWFACTInit>;
    static constexpr std::uint32_t kNumber = 5;
    static std::uint16_t& counter();
    static MessageCatalogue* catalogue();
};

namespace obrix::detail {
/// Registers the factorisation messages before any static object of an including unit can
/// raise one.
static RWFACTInit factCatalogueRegistrar;
} // namespace obrix::detail

#endif

#include "ObrixBase/math/FactError.h"

namespace {

constexpr std::uint32_t C = MATH_CONTINUE, T = MATH_TERMINATE;

constexpr MathMessage factMessages[] = {
    {C, "Internal error, you've found a bug"},
    {C, "Condition number not calculated"},
    {T, "b vector length wrong (%u!=%u)"},
    {C, "diagonal of Hermetian matrix being factorized is non-real"},
    {T, "vector wrong length to permute (%u!=%u)"},
    {T, "Invalid Cholesky shift direction"},
    {T, "Invalid Cholesky shift columns (%d,%d)"},
    {T, "Data matrix wrong height (%u!=%u)"},
    {T, "Vector to hold sines or cosines wrong length (%u!=%u)"},
    {T, "Different number of residuals than data columns (%u!=%u)"},
    {T, "Internal error: The normal equations are not positive definite"},
    {T, "Data %d doesn't exist, only %d data columns"},
    {T, "vec pointers must have stride == 1"},
    {T, "Can't factorize, %ux%u matrix not square"},
    {T, "Can't factorize, bandwidth %d too big for %dx%d matrix"},
    {C, "Called factor, but a factorization has already been computed"},
    {T, "Matrix must have more rows than cols to be factorizable, but %d<%d"},
    {T, "Can't solve system of equations, matrix not successfully factorized"},
    {T, "Pivoting position specifier must be INITIAL,FREE, or FINAL, not %d"},
};

constinit MessageCatalogue factCatalogue{5, factMessages,
                                         sizeof factMessages / sizeof factMessages[0], nullptr};

} // namespace

std::uint16_t& RWFACTInit::counter() {
    static constinit std::uint16_t count = 0;
    return count;
}
MessageCatalogue* RWFACTInit::catalogue() {
    return &factCatalogue;
}

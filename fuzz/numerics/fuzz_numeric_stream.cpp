// Reads arbitrary text into numeric vectors and matrices with operator>>. Whatever happens the
// object must stay consistent (no crash, no leak, a vector's length equal to the values read),
// and what was read must print and read back to the same values.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "ObrixBase/math/DoubleGenMat.h"
#include "ObrixBase/math/DoubleVec.h"

namespace {

[[noreturn]] void fail() {
    __builtin_trap();
}

template <class V>
void roundTrip(const V& read) {
    std::stringstream text;
    text.precision(17);
    text << read;
    V back;
    text >> back;
    if (text.fail() || !(back == read))
        fail();
}

template <class T>
void readVector(const std::string& input) {
    NumVec<T> v(3, T(1));
    std::istringstream in(input);
    in >> v;
    for (unsigned i = 0; i < v.length(); ++i) // every element is readable
        (void)v[static_cast<int>(i)];
    roundTrip(v);
}

template <class T>
void readMatrix(const std::string& input) {
    NumGenMat<T> m(2, 2, T(7));
    std::istringstream in(input);
    in >> m;
    if (m.dataVec().length() != m.rows() * m.cols())
        fail();
    if (in.fail() && !(m == NumGenMat<T>(2, 2, T(7))))
        fail(); // a failed read leaves the matrix as it was
    // "4000000000x0 [ ]" is a valid empty matrix, but printing it writes one line per row.
    if (m.rows() <= (1u << 20) && m.cols() <= (1u << 20))
        roundTrip(m);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 5) {
    case 0:
        readVector<double>(input);
        break;
    case 1:
        readVector<int>(input);
        break;
    case 2:
        readVector<signed char>(input);
        break;
    case 3:
        readMatrix<double>(input);
        break;
    default:
        readMatrix<int>(input);
        break;
    }
    return 0;
}

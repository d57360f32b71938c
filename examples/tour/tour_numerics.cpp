// Numerics: vectors are views over shared storage, so a slice written through changes the
// vector it came from; matrices are vectors with a shape, multiplied row by column.
#include <iostream>

#include "ObrixBase/ObrixBase.h"
#include "examples/tour/tour.h"

void tourNumerics() {
    tourHeading("Numerics: vectors, slices and matrices");

    const int perLine = DoubleVec::setFormatting(8); // one line for the eight elements below
    DoubleVec ramp(8, 0.0, 0.5);                     // 0, 0.5, 1, ... by repeated addition
    std::cout << "ramp:               " << ramp << "\n";

    // Every other element, as a view sharing the ramp's storage.
    DoubleVec evens = ramp.slice(0, 4, 2);
    evens *= 10.0;
    std::cout << "after evens *= 10:  " << ramp << "\n";

    // A reversed view and a deep copy: only the view follows later writes.
    DoubleVec backwards = ramp.slice(7, 8, -1);
    DoubleVec snapshot = ramp.copy();
    ramp(7) = -1.0;
    std::cout << "reversed view:      " << backwards << "\n";
    std::cout << "snapshot (a copy):  " << snapshot << "\n";
    std::cout << "sum " << sum(ramp) << ", dot(evens, evens) " << dot(evens, evens)
              << ", largest at index " << maxIndex(ramp) << "\n";

    const double a[] = {1, 2, 3, 4, 5, 6};  // column-major 2 x 3
    const double b[] = {1, 0, -1, 2, 1, 0}; // 3 x 2
    DoubleGenMat left(a, 2, 3), right(b, 3, 2);
    std::cout << "A =\n"
              << left << "\nB =\n"
              << right << "\nA x B =\n"
              << product(left, right) << "\n";

    // A returning handler turns the default abort into a report the tour can show.
    MathErrorHandler previous = setMathErrorHandler([](const MathError& e, va_list args) {
        char text[160];
        std::vsnprintf(text, sizeof text, mathErrorFormat(e.code), args);
        std::cout << "handler saw error code 0x" << std::hex << e.code << std::dec << ": " << text
                  << "\n";
    });
    product(left, left);
    setMathErrorHandler(previous);
    DoubleVec::setFormatting(perLine);
}

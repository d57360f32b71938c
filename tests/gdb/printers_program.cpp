// The values the debugger's printers are checked on: check_printers.sh stops in printersStop
// and prints each of them. Members of the structures are small integers stored as pointers,
// so that the printed text is the same in every run.
#include "ObrixBase/ObrixBase.h"

extern "C" {
// Not inlined, so that the debugger can stop here with main's locals one frame up.
__attribute__((noinline)) void printersStop() {
    asm volatile("");
}
}

int main() {
    DoubleVec ramp(4, 1.0, 0.5); // 1, 1.5, 2, 2.5
    DoubleVec everyOther = ramp.slice(1, 2, 2);
    DoubleVec empty;
    IntVec counts(3, 7);

    // A 2 x 3 matrix whose element (i, j) is 10 i + j, and a view of its last two columns.
    DoubleGenMat grid(2, 3, 0.0);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            grid(i, j) = 10.0 * i + j;

    T4dDblMatrix shift; // the identity with a translation in row 3
    shift(3, 0) = 5.0;
    shift(3, 2) = -1.5;

    int status = 0;
    DS_Structure* kinds[4];
    for (int k = 0; k < 4; ++k) {
        kinds[k] = DS_create_type(k + 1, &status, __LINE__, __FILE__);
        if (k == 1) // newest first: the printed order must follow the structure's, not ours
            DS_set_comparator(kinds[k], &Ds_filo_comparator, &status);
        for (int item = 1; item <= 3; ++item)
            kinds[k]->methods->add(kinds[k], VK_int2ptr(item), &status);
    }
    DS_Structure* none = DS_create_type(DS_KIND_DLIST, &status, __LINE__, __FILE__);

    printersStop();

    for (DS_Structure*& s : kinds)
        DS_destructor(&s, nullptr, nullptr, &status);
    DS_destructor(&none, nullptr, nullptr, &status);
    return 0;
}

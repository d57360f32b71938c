/* Compiled as strict C11: the umbrella header's C part must contain no C++, and the
   ready-made callbacks keep the argument types callers store them under (a mismatch is an
   incompatible-pointer error here). */
#include "ObrixBase/ObrixBase.h"

static int (*const default_comparator)(void**, void**) = Ds_default_comparator;
static int (*const string_comparator)(char**, char**) = Ds_string_comparator;
static int (*const string_find)(char*, char*) = Ds_string_find;
static void (*const avl_balance)(void**) = VK_avl_balance;

int main(void) {
    void* p = MA_malloc(8, __LINE__, __FILE__);
    char a[] = "a", b[] = "b";
    char *pa = a, *pb = b;
    void* root = 0;
    MA_free(p);
    avl_balance(&root);
    if (default_comparator(&p, &p) != 0 || string_comparator(&pa, &pb) != -1 ||
        string_find(a, a) != 1)
        return 1;
    return p ? 0 : 1;
}

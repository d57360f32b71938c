#include "ObrixBase/auto/containers/TcharPtrArray.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

void freeString(void* s) {
    std::free(s);
}

// A malloc'ed copy, null for null; throws when memory runs out so that nothing is stored.
char* copyString(const char* s) {
    if (!s)
        return nullptr;
    const std::size_t n = std::strlen(s) + 1;
    char* c = static_cast<char*>(std::malloc(n));
    if (!c)
        throw std::bad_alloc();
    std::memcpy(c, s, n);
    return c;
}

bool sameString(const char* a, const char* b) {
    return a == b || (a && b && std::strcmp(a, b) == 0);
}

} // namespace

TcharPtrArray::TcharPtrArray() noexcept : TautoArrayBase(&freeString) {
}

TcharPtrArray::TcharPtrArray(const TcharPtrArray& a) : TautoArrayBase(&freeString) {
    for (int i = 0; i < a.length(); ++i)
        append(a[i]);
}

TcharPtrArray& TcharPtrArray::operator=(const TcharPtrArray& a) {
    if (this != &a) {
        TcharPtrArray copy(a);
        *this = std::move(copy);
    }
    return *this;
}

const char* TcharPtrArray::append(const char* s) {
    char* c = copyString(s);
    appendItem(c);
    return c;
}

const char* TcharPtrArray::insert(int i, const char* s) {
    char* c = copyString(s);
    insertItem(i, c);
    return c;
}

const char* TcharPtrArray::replace(int i, const char* s) {
    char* c = copyString(s); // copied before the old string is freed: s may be that string
    replaceItem(i, c);
    return c;
}

int TcharPtrArray::find(const char* s) const noexcept {
    for (int i = 0; i < length(); ++i)
        if (sameString((*this)[i], s))
            return i;
    return -1;
}

int TcharPtrArray::operator==(const TcharPtrArray& a) const noexcept {
    if (length() != a.length())
        return 0;
    for (int i = 0; i < length(); ++i)
        if (!sameString((*this)[i], a[i]))
            return 0;
    return 1;
}

#include "ObrixBase/auto/containers/TautoArrayBase.h"

TautoArrayBase::TautoArrayBase(TautoArrayBase&& a) noexcept
    : items_(std::move(a.items_)), destroy_(a.destroy_) {
}

TautoArrayBase& TautoArrayBase::operator=(TautoArrayBase&& a) noexcept {
    if (this != &a) {
        clear();
        items_ = std::move(a.items_);
        destroy_ = a.destroy_;
    }
    return *this;
}

TautoArrayBase::~TautoArrayBase() {
    clear();
}

void TautoArrayBase::clear() noexcept {
    // Last first, so that objects added later, which may refer to earlier ones, go first.
    while (!items_.isEmpty()) {
        void* object = items_.last();
        items_.removeLast();
        destroyObject(object);
    }
}

void TautoArrayBase::remove(int i) noexcept {
    void* object = items_[i];
    items_.remove(i);
    destroyObject(object);
}

int TautoArrayBase::findItem(const void* object) const noexcept {
    for (int i = 0; i < items_.length(); ++i)
        if (items_[i] == object)
            return i;
    return -1;
}

void TautoArrayBase::appendItem(void* object) {
    try {
        items_.append(object);
    } catch (...) {
        destroyObject(object);
        throw;
    }
}

void TautoArrayBase::insertItem(int i, void* object) {
    try {
        items_.insert(i, object);
    } catch (...) {
        destroyObject(object);
        throw;
    }
}

void TautoArrayBase::replaceItem(int i, void* object) noexcept {
    void* old = items_[i];
    items_[i] = object;
    if (old != object)
        destroyObject(old);
}

void* TautoArrayBase::releaseItem(int i) noexcept {
    void* object = items_[i];
    items_.remove(i);
    return object;
}

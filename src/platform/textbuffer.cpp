#include "platform/textbuffer.h"

#include <cstdint>
#include <new>
#include <utility>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace trv5::platform {

namespace {

#if defined(__linux__)
constexpr std::size_t kLargePage = std::size_t{2} << 20;
// Below this, the allocator's own pages are cheap enough and the rounding up to whole large
// pages would waste more than it saves.
constexpr std::size_t kLargePageThreshold = 4 * kLargePage;
#endif

} // namespace

TextBuffer::TextBuffer(std::size_t pSize) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (pSize >= kLargePageThreshold) {
        // One large page more than needed, so that the buffer can start on a large-page boundary.
        const std::size_t rounded = (pSize + kLargePage - 1) / kLargePage * kLargePage;
        const std::size_t mappingSize = rounded + kLargePage;
        void* mapping =
            mmap(nullptr, mappingSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapping != MAP_FAILED) {
            const auto address = reinterpret_cast<std::uintptr_t>(mapping);
            const std::uintptr_t aligned = (address + kLargePage - 1) / kLargePage * kLargePage;
            // Advice only: without large pages the buffer still works with ordinary ones, and
            // then faulting them all in with one call is still about a tenth of a load cheaper
            // than a fault per page. Kernels that know neither leave the pages to be faulted in.
            madvise(reinterpret_cast<void*>(aligned), rounded, MADV_HUGEPAGE);
#if defined(MADV_POPULATE_WRITE)
            madvise(reinterpret_cast<void*>(aligned), rounded, MADV_POPULATE_WRITE);
#endif
            m_mapping = mapping;
            m_mappingSize = mappingSize;
            m_data = reinterpret_cast<char*>(aligned);
            return;
        }
    }
#endif
    m_data = new char[pSize];
}

TextBuffer::~TextBuffer() {
    Reset();
}

TextBuffer::TextBuffer(TextBuffer&& pOther) noexcept
    : m_data(std::exchange(pOther.m_data, nullptr)),
      m_mapping(std::exchange(pOther.m_mapping, nullptr)),
      m_mappingSize(std::exchange(pOther.m_mappingSize, 0)) {}

TextBuffer& TextBuffer::operator=(TextBuffer&& pOther) noexcept {
    if (this != &pOther) {
        Reset();
        m_data = std::exchange(pOther.m_data, nullptr);
        m_mapping = std::exchange(pOther.m_mapping, nullptr);
        m_mappingSize = std::exchange(pOther.m_mappingSize, 0);
    }
    return *this;
}

void TextBuffer::Reset() noexcept {
#if defined(__linux__)
    if (m_mapping != nullptr) {
        munmap(m_mapping, m_mappingSize);
    } else
#endif
    {
        delete[] m_data;
    }
    m_data = nullptr;
    m_mapping = nullptr;
    m_mappingSize = 0;
}

} // namespace trv5::platform

#pragma once

#include <cstddef>

namespace trv5::platform {

// A char buffer for one large text that lives only while it is parsed. Saved state of a long run
// is tens of megabytes; taken from the allocator, every 4 KiB page of it is faulted in and zeroed
// separately, which cost about a sixth of a whole load. Where the system offers large pages, a
// buffer of several megabytes asks for them, so the same text takes a few dozen faults.
class TextBuffer {
public:
    TextBuffer() = default;
    explicit TextBuffer(std::size_t pSize);
    ~TextBuffer();
    TextBuffer(TextBuffer&& pOther) noexcept;
    TextBuffer& operator=(TextBuffer&& pOther) noexcept;
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    [[nodiscard]] char* Data() const noexcept { return m_data; }
    void Reset() noexcept;

private:
    char* m_data = nullptr;
    // What was mapped for a large-page buffer, or null when m_data came from new[].
    void* m_mapping = nullptr;
    std::size_t m_mappingSize = 0;
};

} // namespace trv5::platform

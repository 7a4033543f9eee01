#pragma once

namespace trv5 {

// Releases what a control holds before the host lets go of it. The hosted charts empty their
// engine's content; calling it again, or on a control whose engine is gone, does nothing.
class IDisposable {
public:
    virtual ~IDisposable() = default;
    virtual void Dispose() = 0;

protected:
    IDisposable() = default;
    IDisposable(const IDisposable&) = default;
    IDisposable& operator=(const IDisposable&) = default;
};

} // namespace trv5

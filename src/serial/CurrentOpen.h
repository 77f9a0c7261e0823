#pragma once

#include "platform/Mutex.h"
#include "serial/OpenPort.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace vorrano::serial {

// Which open a port has now, and who may change that: of two callers that open, or close, at the same time one does the
// work, and the other is refused.
//
// Threads: every method on any; none blocks.
class CurrentOpen {
public:
    using Pointer = std::shared_ptr<OpenPort>;

    // Null while the port is closed.
    [[nodiscard]] Pointer get() const;
    // How often the port was opened: the number of the open that there is, or was last.
    [[nodiscard]] std::uint64_t number() const;
    // The errno of the last open, if that one failed.
    [[nodiscard]] std::optional<int> openError() const;

    // Whether the caller may open. Ends with setOpened() or setOpenFailed().
    [[nodiscard]] bool beginOpen();
    Pointer setOpened(platform::Terminal& terminal, int descriptor);
    void setOpenFailed(int error);

    // The open that the caller has to close: the current one, if it has that number. Without a number the current one
    // in any case. Null when there is nothing to close, or another caller closes it. Ends with setClosed() or
    // setCloseFailed(); between them setEnded() makes get() return null.
    [[nodiscard]] Pointer beginClose(std::optional<std::uint64_t> number);
    void setEnded();
    void setClosed();
    void setCloseFailed(Pointer open);

private:
    mutable platform::Mutex m_mutex; // held for a look or an assignment only
    Pointer m_open VORRANO_GUARDED_BY(m_mutex);
    std::uint64_t m_number VORRANO_GUARDED_BY(m_mutex) = 0;
    std::optional<int> m_openError VORRANO_GUARDED_BY(m_mutex);
    bool m_isOpening VORRANO_GUARDED_BY(m_mutex) = false;
    bool m_isClosing VORRANO_GUARDED_BY(m_mutex) = false;
};

} // namespace vorrano::serial

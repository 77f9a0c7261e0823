#pragma once

#include "BlockingPort.h"
#include "StreamPort.h"

#include <functional>
#include <span>
#include <string>

namespace vorrano::bench {

// A descriptor of the line, raw and at 9600 baud; -1 when there is none.
[[nodiscard]] int openLine(const std::string& node);

// The floor: one loop of write, poll and read.
class PosixPort : public BlockingPort<StreamPort> {
public:
    explicit PosixPort(std::string node);
    ~PosixPort() override;

    bool open() override;
    void close() override;
    void receiveStream(std::function<void(bool)> done) override;

protected:
    // Asks for the stream, and hands on each chunk of it as it is read; whether all of it came.
    [[nodiscard]] bool readStream(const std::function<void(std::span<const char> chunk)>& take) const;

private:
    [[nodiscard]] bool exchangeOnce(char request) override;

    const std::string m_node;
    int m_line = -1;
};

} // namespace vorrano::bench

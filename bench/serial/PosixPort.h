#pragma once

#include "StreamPort.h"

#include <string>

namespace vorrano::bench {

// The floor: one loop of write, poll and read.
class PosixPort final : public StreamPort {
public:
    explicit PosixPort(std::string node);
    ~PosixPort() override;

    bool open() override;
    void close() override;
    void exchange(char request, int times, std::function<void(bool)> done) override;
    void receiveStream(std::function<void(bool)> done) override;

private:
    [[nodiscard]] bool exchangeOnce(char request) const;
    [[nodiscard]] bool receiveAll() const;

    const std::string m_node;
    int m_line = -1;
};

} // namespace vorrano::bench

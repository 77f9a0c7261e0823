#pragma once

#include "BlockingPort.h"
#include "StreamPort.h"

#include <string>

namespace vorrano::bench {

// The floor: one loop of write, poll and read.
class PosixPort final : public BlockingPort<StreamPort> {
public:
    explicit PosixPort(std::string node);
    ~PosixPort() override;

    bool open() override;
    void close() override;
    void receiveStream(std::function<void(bool)> done) override;

private:
    [[nodiscard]] bool exchangeOnce(char request) override;
    [[nodiscard]] bool receiveAll() const;

    const std::string m_node;
    int m_line = -1;
};

} // namespace vorrano::bench

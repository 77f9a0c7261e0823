#pragma once

#include "Port.h"

namespace vorrano::bench {

// One that also takes what comes without a pause.
class StreamPort : public Port {
public:
    // Asks for the stream and takes all of it; then tells whether each byte came in its place.
    virtual void receiveStream(std::function<void(bool)> done) = 0;
};

} // namespace vorrano::bench

#pragma once

#include "Port.h"

namespace vorrano::bench {

// One whose library blocks until the reply has come: the main loop stands still meanwhile.
template <class Kind>
class BlockingPort : public Kind {
public:
    void exchange(char request, int times, std::function<void(bool)> done) final
    {
        bool all = true;
        for (int i = 0; i < times && all; ++i) {
            all = exchangeOnce(request);
            if (all) {
                this->replied();
            }
        }
        done(all);
    }

private:
    // Whether it was answered.
    [[nodiscard]] virtual bool exchangeOnce(char request) = 0;
};

} // namespace vorrano::bench

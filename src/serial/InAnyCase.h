#pragma once

namespace vorrano::serial {

// Does the one, then the other, also when the first ends by an exception (which goes on afterwards).
template <class First, class Then>
void inAnyCase(const First& first, const Then& then)
{
    try {
        first();
    } catch (...) {
        then();
        throw;
    }
    then();
}

} // namespace vorrano::serial

#include "campaign/Fault.h"

namespace vorrano::campaign {

std::vector<Fault> allFaults()
{
    return {
        {"silence", LineFault::Silence},
        {"short delay", LineFault::ShortDelay},
        {"long delay", LineFault::LongDelay},
        {"split", LineFault::Split},
        {"merge", LineFault::Merge},
        {"garbage", LineFault::Garbage},
        {"cut", LineFault::Cut},
        {"hang-up", LineFault::HangUp},
        {"pulled cable", LineFault::PulledCable},
        {"lines gone", LineFault::LinesGone},
        {"lines unreadable", LineFault::LinesUnreadable},
        {"write fails", LineFault::WriteFails},
        {"writes in parts", LineFault::WritesInParts},
        {"slow write", LineFault::SlowWrite},
        {"read fails", LineFault::ReadFails},
        {"wait fails", LineFault::WaitFails},
        {"held by another", LineFault::HeldByAnother},
        {"service refuses", ServiceMood::Refuses},
        {"service silent", ServiceMood::Silent},
        {"service slow", ServiceMood::Slow},
        {"body cut", ServiceMood::Cut},
        {"empty body", ServiceMood::AnswersNothing},
        {"error page", ServiceMood::ErrorPage},
        {"wrong shape", ServiceMood::WrongShape},
        {"numbers", ServiceMood::Numbers},
        {"too deep", ServiceMood::TooDeep},
        {"redirects", ServiceMood::Redirects},
        {"endless body", ServiceMood::Endless},
        {"no network", NoNetwork{}},
    };
}

} // namespace vorrano::campaign

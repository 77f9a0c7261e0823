#include "session/TextScreening.h"

namespace vorrano::session {

bool hasDollarSign(std::string_view text) { return text.find('$') != std::string_view::npos; }

bool hasDisallowedRegistrationCharacters(std::string_view text)
{
    return text.find_first_of("#?/%") != std::string_view::npos;
}

} // namespace vorrano::session

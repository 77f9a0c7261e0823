#pragma once

#include "web/ServiceAddress.h"

namespace vorrano::support {

// An account with a different, valid text in each field.
inline web::Account filledAccount()
{
    return {.accountID = "ada1815",
            .password = "secret1",
            .guestPassword = "guest22",
            .email = "ada@host.example",
            .name = "Ada",
            .address = "1 Main St",
            .address2 = "Top",
            .cityName = "Town",
            .stateName = "ST",
            .countryName = "Land",
            .zipCode = "12345"};
}

} // namespace vorrano::support

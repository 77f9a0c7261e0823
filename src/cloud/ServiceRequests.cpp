#include "cloud/ServiceRequests.h"

#include "app/session/Text.h"
#include "cloud/web/ServiceAddress.h"

namespace vorrano::cloud {

std::string loginAddress(std::string_view root, std::string_view trimmedAccountID, std::string_view password)
{
    std::string address(root);
    address.append(web::kValidateLogin).append(trimmedAccountID).append("/").append(password);
    return address;
}

std::string accountAddress(std::string_view root, const std::optional<std::string>& accountID)
{
    std::string address(root);
    address.append(web::kGetAccounts).append(accountID.value_or(""));
    return address;
}

std::string registrationAddress(std::string_view root, const std::optional<std::string>& accountID,
                                std::string_view macAddress, std::string_view name)
{
    std::string address(root);
    address.append(web::kInsertAccountVorranos).append(accountID.value_or("")).append("/");
    address.append(vorrano::text::trimmingBlanksAndLineEnds(macAddress)).append("/").append(name);
    return web::percentEscaped(address);
}

} // namespace vorrano::cloud

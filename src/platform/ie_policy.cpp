#include "platform/numbers.h"
#include "platform/registry_mod.h"

namespace britlock {

namespace {

constexpr const char* policy_keys[] = {
    R"(Software\Policies\Microsoft)",
    R"(Software\Policies\Microsoft\Internet Explorer)",
    R"(Software\Policies\Microsoft\Internet Explorer\Restrictions)",
    R"(Software\Policies\Microsoft\Internet Explorer\Control Panel)",
};
constexpr const char* restrictions_key = policy_keys[2];

}  // namespace

std::string REGISTRY_MOD::ie_policy_read(std::string_view name) {
    std::string user = get_user_name();
    if (const std::string clean = clean_reg_string(user); !clean.empty()) user = clean;

    for (const char* key : policy_keys)
        reg_create_key(HKEY_CURRENT_USER, key);
    const std::string segment = user == "Standard" ? ".Default" : user;
    int32_t number = 0;
    for (const char* key : policy_keys)
        number = reg_create_key(HKEY_USERS, segment + '\\' + key);

    // A missing value or a text leaves the disposition of the last key: a value that is missing reads as set
    // where the key could be made. On Windows NT no key of that name lies under HKEY_USERS, so there it reads
    // as 0.
    const auto stored = reg_query_value(HKEY_CURRENT_USER, restrictions_key, name);
    if (stored && stored->type == machine::reg_dword)
        number = to_long(leading_number(reg_read_value(HKEY_CURRENT_USER, restrictions_key, name)));
    return number_text(number);
}

}  // namespace britlock

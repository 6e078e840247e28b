#pragma once

// Digests of bytes, for HASHBYTES. Pure functions; not for secrets.

#include <string>
#include <string_view>

namespace vicenter::tsql::engine {

std::string Md5(std::string_view bytes);
std::string Sha1(std::string_view bytes);
std::string Sha256(std::string_view bytes);

}  // namespace vicenter::tsql::engine

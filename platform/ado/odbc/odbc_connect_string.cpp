#include "platform/ado/odbc/odbc_connect_string.h"

#include <charconv>
#include <cstdlib>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/ado/connection.h"

namespace vicenter::ado {

using automation::Error;
using automation::SameName;

namespace {

constexpr const char* kSource = "ODBC";

[[noreturn]] void Refuse(const std::string& text) {
    throw Error(error_number::kProviderError, text, kSource);
}

[[noreturn]] void RefuseValue(const std::string& keyword) {
    Refuse("连接字符串中“" + keyword + "”的值无法识别。");
}

bool ReadYes(const std::string& keyword, const std::string& value) {
    for (const char* yes : {"yes", "true", "1", "sspi"}) {
        if (SameName(value, yes)) return true;
    }
    for (const char* no : {"no", "false", "0", ""}) {
        if (SameName(value, no)) return false;
    }
    RefuseValue(keyword);
}

int ReadNumber(const std::string& keyword, const std::string& value) {
    int number = 0;
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < 0) RefuseValue(keyword);
    return number;
}

enum class Key {
    kProvider,
    kDriver,
    kDataSourceName,
    kServer,
    kPort,
    kFailoverPartner,
    kDatabase,
    kUser,
    kPassword,
    kTrusted,
    kEncrypt,
    kTrustCertificate,
    kApplication,
    kWorkstation,
    kLanguage,
    kPacketSize,
    kMultiSubnet,
    kIntent,
    kConnectSeconds,
    kCommandSeconds,
    kLockMilliseconds,
    kTransactions,
    kPooling,
    kExtended,
    kNothing,  // known, and without a meaning here
};

struct Keyword {
    std::string_view name;
    Key key;
};

constexpr Keyword kKeywords[] = {
    {"Provider", Key::kProvider},
    {"Driver", Key::kDriver},
    {"DSN", Key::kDataSourceName},
    {"Data Source", Key::kServer},
    {"Server", Key::kServer},
    {"Address", Key::kServer},
    {"Addr", Key::kServer},
    {"Network Address", Key::kServer},
    {"Port", Key::kPort},
    {"Failover Partner", Key::kFailoverPartner},
    {"Failover_Partner", Key::kFailoverPartner},
    {"FailoverPartner", Key::kFailoverPartner},
    {"Initial Catalog", Key::kDatabase},
    {"Database", Key::kDatabase},
    {"User ID", Key::kUser},
    {"User", Key::kUser},
    {"UID", Key::kUser},
    {"Password", Key::kPassword},
    {"PWD", Key::kPassword},
    {"Integrated Security", Key::kTrusted},
    {"Trusted_Connection", Key::kTrusted},
    {"Encrypt", Key::kEncrypt},
    {"Use Encryption for Data", Key::kEncrypt},
    {"TrustServerCertificate", Key::kTrustCertificate},
    {"Trust Server Certificate", Key::kTrustCertificate},
    {"Application Name", Key::kApplication},
    {"App", Key::kApplication},
    {"Workstation ID", Key::kWorkstation},
    {"WSID", Key::kWorkstation},
    {"Current Language", Key::kLanguage},
    {"Language", Key::kLanguage},
    {"Packet Size", Key::kPacketSize},
    {"PacketSize", Key::kPacketSize},
    {"MultiSubnetFailover", Key::kMultiSubnet},
    {"Multi Subnet Failover", Key::kMultiSubnet},
    {"Application Intent", Key::kIntent},
    {"ApplicationIntent", Key::kIntent},
    {"Connect Timeout", Key::kConnectSeconds},
    {"Connection Timeout", Key::kConnectSeconds},
    {"Command Timeout", Key::kCommandSeconds},
    {"General Timeout", Key::kCommandSeconds},
    {"Lock Timeout", Key::kLockMilliseconds},
    {"Transactions", Key::kTransactions},
    {"Pooling", Key::kPooling},
    {"Extended Properties", Key::kExtended},
    {"Lists Kept", Key::kNothing},  // the host's
    {"Persist Security Info", Key::kNothing},
    {"Auto Translate", Key::kNothing},
    {"AutoTranslate", Key::kNothing},
    {"DataTypeCompatibility", Key::kNothing},
    {"Use Procedure for Prepare", Key::kNothing},
    {"Tag with column collation when possible", Key::kNothing},
    {"OLE DB Services", Key::kNothing},
    {"Locale Identifier", Key::kNothing},
    {"Network Library", Key::kNothing},
    {"Net", Key::kNothing},
    {"Prompt", Key::kNothing},
    {"MARS Connection", Key::kNothing},
    {"MultipleActiveResultSets", Key::kNothing},
};

// "." and "(local)" are OLE DB's names of this machine; a protocol before the name is for Windows.
std::string ServerName(std::string name) {
    for (const std::string_view protocol : {"tcp:", "np:", "lpc:"}) {
        if (name.size() > protocol.size() && SameName(name.substr(0, protocol.size()), protocol))
            name.erase(0, protocol.size());
    }
    const std::size_t end = name.find_first_of("\\,");
    const std::string host = name.substr(0, end);
    if (host == "." || SameName(host, "(local)"))
        return "localhost" + (end == std::string::npos ? std::string() : name.substr(end));
    return name;
}

class SettingsReader {
  public:
    OdbcSettings Read(const std::string& connectString) {
        ReadPairs(ConnectString(connectString));
        if (!port_.empty() && settings_.server.find(',') == std::string::npos)
            settings_.server += "," + port_;
        // A driver for something else knows where that is.
        const bool isOther = !settings_.driver.empty() && DriverRank(settings_.driver) == 0;
        if (settings_.server.empty() && settings_.dataSourceName.empty() && !isOther)
            Refuse("连接字符串没有指定服务器（Data Source）。");
        return std::move(settings_);
    }

  private:
    void ReadPairs(const ConnectString& text) {
        // A driver that is named knows keywords of its own.
        const bool named = text.Has("Driver") || text.Has("DSN") || inExtended_;
        bool behindPassword = false;
        for (const auto& [keyword, value] : text.Pairs()) {
            const Keyword* known = nullptr;
            for (const Keyword& candidate : kKeywords) {
                if (SameName(candidate.name, keyword)) known = &candidate;
            }
            if (known != nullptr) {
                Set(known->key, keyword, value);
            } else if (named) {
                settings_.more.emplace_back(keyword, value);
            } else if (behindPassword) {
                // It may be a part of the password.
                Refuse("连接字符串中密码之后的内容无法识别；密码中有分号时，请把密码放在引号中。");
            } else {
                Refuse("连接字符串中有不认识的关键字：" + keyword);
            }
            behindPassword = known != nullptr && known->key == Key::kPassword;
        }
    }

    void Set(Key key, const std::string& keyword, const std::string& value) {
        switch (key) {
            case Key::kProvider:
                settings_.provider = value;
                break;
            case Key::kDriver:
                settings_.driver = value;
                break;
            case Key::kDataSourceName:
                settings_.dataSourceName = value;
                break;
            case Key::kServer:
                settings_.server = ServerName(value);
                break;
            case Key::kPort:
                port_ = std::to_string(ReadNumber(keyword, value));
                break;
            case Key::kFailoverPartner:
                settings_.failoverPartner = value.empty() ? value : ServerName(value);
                break;
            case Key::kDatabase:
                settings_.database = value;
                break;
            case Key::kUser:
                settings_.user = value;
                break;
            case Key::kPassword:
                settings_.password = value;
                break;
            case Key::kTrusted:
                settings_.trusted = ReadYes(keyword, value);
                break;
            case Key::kEncrypt:
                // Later drivers know more words than these, and drivers of ODBC not all of OLE DB's.
                settings_.encrypt = value;
                if (SameName(value, "true") || value == "1") settings_.encrypt = "yes";
                if (SameName(value, "false") || value == "0") settings_.encrypt = "no";
                break;
            case Key::kTrustCertificate:
                settings_.trustCertificate = ReadYes(keyword, value) ? "yes" : "no";
                break;
            case Key::kApplication:
                settings_.application = value;
                break;
            case Key::kWorkstation:
                settings_.workstation = value;
                break;
            case Key::kLanguage:
                settings_.language = value;
                break;
            case Key::kPacketSize:
                settings_.packetSize = std::to_string(ReadNumber(keyword, value));
                break;
            case Key::kMultiSubnet:
                settings_.multiSubnet = ReadYes(keyword, value) ? "yes" : "no";
                break;
            case Key::kIntent:
                if (!SameName(value, "ReadOnly") && !SameName(value, "ReadWrite") && !value.empty())
                    RefuseValue(keyword);
                settings_.intent = value;
                break;
            case Key::kConnectSeconds:
                settings_.connectSeconds = ReadNumber(keyword, value);
                break;
            case Key::kCommandSeconds:
                settings_.commandSeconds = ReadNumber(keyword, value);
                break;
            case Key::kLockMilliseconds:
                settings_.lockMilliseconds = ReadNumber(keyword, value);
                break;
            case Key::kTransactions:
                if (!SameName(value, "batch") && !SameName(value, "none") && !value.empty())
                    RefuseValue(keyword);
                settings_.batchTransactions = !SameName(value, "none");
                break;
            case Key::kPooling:
                settings_.pooled = ReadYes(keyword, value);
                break;
            case Key::kExtended:
                inExtended_ = true;
                ReadPairs(ConnectString(value));
                inExtended_ = false;
                break;
            case Key::kNothing:
                break;
        }
    }

    OdbcSettings settings_;
    std::string port_;
    bool inExtended_ = false;
};

// A value in a driver's connect string. FreeTDS takes what is in braces as it is, up to "};"; others want the
// closing brace doubled.
std::string Quoted(const std::string& value, bool freeTds) {
    const bool plain =
        value.find_first_of(freeTds ? ";" : "[]{}();?*=!@") == std::string::npos &&
        (value.empty() || (value.front() != '{' && value.front() != ' ' && value.back() != ' '));
    if (plain) return value;
    if (freeTds) {
        if (value.find("};") != std::string::npos) Refuse("FreeTDS 驱动程序不能传递含有“};”的值。");
        return "{" + value + "}";
    }
    std::string quoted = "{";
    for (const char c : value) {
        quoted += c;
        if (c == '}') quoted += c;
    }
    return quoted + "}";
}

// Hosts that say nothing of encryption have not asked for it, as long as their provider did not either; the
// driver of that time would not now.
bool MeansUnencrypted(const OdbcSettings& settings, const std::string& driver) {
    constexpr int kFirstToEncrypt = 1180;
    if (!settings.encrypt.empty() || DriverRank(driver) < kFirstToEncrypt) return false;
    for (const std::string_view provider : {"SQLOLEDB", "SQLNCLI", "MSOLEDBSQL"}) {
        const std::string_view named = std::string_view(settings.provider).substr(0, provider.size());
        if (SameName(named, provider)) return !SameName(settings.provider.substr(0, 12), "MSOLEDBSQL19");
    }
    return false;
}

// The first driver that finds its way in a group of servers.
constexpr int kFirstForGroups = 900;

bool IsSaid(const std::vector<std::pair<std::string, std::string>>& pairs, std::string_view keyword) {
    for (const auto& pair : pairs) {
        if (SameName(pair.first, keyword)) return true;
    }
    return false;
}

}  // namespace

OdbcSettings ReadOdbcSettings(const std::string& connectString) {
    return SettingsReader().Read(connectString);
}

std::string DriverConnectString(const OdbcSettings& settings, const std::string& driver,
                                const std::string& server) {
    const bool freeTds = IsFreeTds(driver);
    std::string text;
    const auto add = [&](const char* keyword, const std::string& value) {
        if (!value.empty()) text += std::string(keyword) + "=" + Quoted(value, freeTds) + ";";
    };
    if (!settings.dataSourceName.empty()) {
        add("DSN", settings.dataSourceName);
    } else {
        text += "DRIVER={" + driver + "};";
    }
    // "host,port" is the way of SQL Server's own drivers. FreeTDS sends it on in its login with a NUL in
    // place of the comma, which a server may refuse, and others take the port for a second host.
    const bool together = driver.empty() || (DriverRank(driver) > 0 && !freeTds);
    const std::size_t comma = together ? std::string::npos : server.find(',');
    add("SERVER", server.substr(0, comma));
    if (comma != std::string::npos) add("PORT", server.substr(comma + 1));
    add("DATABASE", settings.database);
    if (freeTds) {
        if (!IsSaid(settings.more, "TDS_Version")) text += "TDS_Version=7.4;";
        if (!IsSaid(settings.more, "ClientCharset")) text += "ClientCharset=UTF-8;";
        if (SameName(settings.encrypt, "strict")) {
            // It would be less than was asked for.
            Refuse("FreeTDS 驱动程序不支持 Encrypt=strict，请改用 Encrypt=yes 或厂商的驱动程序。");
        }
        if (SameName(settings.encrypt, "yes") || SameName(settings.encrypt, "mandatory")) {
            text += "Encryption=require;";
        }
    } else {
        add("Encrypt", MeansUnencrypted(settings, driver) ? "no" : settings.encrypt);
        add("TrustServerCertificate", settings.trustCertificate);
        if (driver.empty() || DriverRank(driver) >= kFirstForGroups) {
            add("MultiSubnetFailover", settings.multiSubnet);
            add("ApplicationIntent", settings.intent);
        }
    }
    add("APP", settings.application);
    add("WSID", settings.workstation);
    add("Language", settings.language);
    add(freeTds ? "PacketSize" : "Packet Size", settings.packetSize);
    for (const auto& [keyword, value] : settings.more)
        add(keyword.c_str(), value);
    if (settings.trusted) {
        text += "Trusted_Connection=Yes;";
    } else {
        add("UID", settings.user);
        add("PWD", settings.password);
    }
    return text;
}

bool IsFreeTds(std::string_view driver) {
    return driver.size() >= 7 && SameName(driver.substr(0, 7), "FreeTDS");
}

int DriverRank(std::string_view name) {
    constexpr std::string_view kVendor = "ODBC Driver ";
    constexpr std::string_view kTail = " for SQL Server";
    if (name.size() > kVendor.size() + kTail.size() && name.starts_with(kVendor) && name.ends_with(kTail)) {
        const std::string version(name.substr(kVendor.size(), name.size() - kVendor.size() - kTail.size()));
        return 1000 + static_cast<int>(std::strtod(version.c_str(), nullptr) * 10);
    }
    if (name == "SQL Server Native Client 11.0") return 900;
    if (name == "SQL Server Native Client 10.0") return 890;
    if (name == "SQL Native Client") return 880;
    if (IsFreeTds(name)) return 500;
    if (name == "SQL Server") return 100;
    return 0;
}

}  // namespace vicenter::ado

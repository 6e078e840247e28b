#include "platform/ado/file_care.h"

namespace vicenter::ado {

namespace {

const FileCare*& Registered() {
    static const FileCare* care = nullptr;
    return care;
}

}  // namespace

const FileCare* RegisteredFileCare() {
    return Registered();
}

void RegisterFileCare(const FileCare& care) {
    Registered() = &care;
}

std::optional<std::string> FileOf(const std::string& connectString) {
    return Registered() == nullptr ? std::nullopt : Registered()->FileOf(connectString);
}

}  // namespace vicenter::ado

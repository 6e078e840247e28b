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

}  // namespace vicenter::ado

// vicenter account-set new FILE [--demo] [--vouchers N]

#include "host/account_set.h"
#include "host/cli/context.h"

namespace vicenter::host {

int RunAccountSetNew(const CliContext& context) {
    const CliOptions& options = context.options;
    CreateAccountSetFile(options.file, {options.demo, options.vouchers});
    return FinishSpeaking(context, true, JsonObject({{"file", options.file}}),
                          "账套已建立：" + options.file + "\n");
}

}  // namespace vicenter::host

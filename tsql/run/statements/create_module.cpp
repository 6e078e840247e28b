// CREATE and ALTER of views and procedures: their texts go into the catalog as they are.

#include <set>

#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

void Executor::CreateView(const CreateViewStatement& statement) {
    const std::string& name = statement.name.Object();
    if (name.starts_with('#')) throw MakeError(4103, statement.name.Where(), {name});
    transactions_.Define(false, [&] {
        const bool exists = catalog_.FindView(name) != nullptr;
        if (statement.alter && !exists) throw MakeError(208, statement.name.Where(), {statement.name.Text()});
        if (!statement.alter && !(statement.createOrAlter && exists) && catalog_.ObjectId(name, "")) {
            throw MakeError(2714, statement.name.Where(), {name});
        }
        // What it asks for must be there, and every column needs a name.
        const Translation translation =
            Translated([&](Translator& translator) { return translator.Select(*statement.query); });
        if (!translation.temporaries.empty()) throw MakeError(4508, statement.position);
        if (!statement.columns.empty() && statement.columns.size() != translation.columns.size()) {
            throw MakeError(statement.columns.size() < translation.columns.size() ? 8158 : 8159,
                            statement.position, {name});
        }
        for (std::size_t i = 0; statement.columns.empty() && i < translation.columns.size(); ++i) {
            if (translation.columns[i].name.empty()) {
                throw MakeError(4511, statement.position, {static_cast<std::int32_t>(i + 1)});
            }
        }
        std::set<std::string> names;
        for (std::size_t i = 0; i < translation.columns.size(); ++i) {
            const std::string& column =
                statement.columns.empty() ? translation.columns[i].name : statement.columns[i].text;
            if (!names.insert(LowerAscii(column)).second)
                throw MakeError(4506, statement.position, {column, name});
        }
        catalog_.WriteModule('V', name, std::string(frame_->text));
    });
}

void Executor::CreateProcedure(const CreateProcedureStatement& statement) {
    const std::string& name = statement.name.Object();
    // It would be there for all sessions, and stay.
    if (name.starts_with('#')) throw MakeError(40510, statement.name.Where(), {"CREATE PROCEDURE " + name});
    transactions_.Define(false, [&] {
        const bool exists = catalog_.FindProcedure(name) != nullptr;
        if (statement.alter && !exists) throw MakeError(208, statement.name.Where(), {statement.name.Text()});
        if (!statement.alter && !(statement.createOrAlter && exists) && catalog_.ObjectId(name, "")) {
            throw MakeError(2714, statement.name.Where(), {name});
        }
        // The whole batch is kept, so that lines in errors are those of the text that was sent.
        catalog_.WriteModule('P', name, std::string(frame_->text));
    });
}

}  // namespace vicenter::tsql::engine

#include "tsql/run/system_procedures.h"

#include <algorithm>

namespace vicenter::tsql::engine {

namespace {

const SystemProcedure* const kProcedures[] = {&kSpColumns, &kSpHelp,      &kSpHelpIndex, &kSpHelpText,
                                              &kSpRename,  &kSpSpaceUsed, &kSpTables};

// What administrators' texts call besides.
constexpr std::string_view kRefused[] = {"sp_addextendedproperty",
                                         "sp_addlinkedserver",
                                         "sp_addlogin",
                                         "sp_addmessage",
                                         "sp_addrole",
                                         "sp_addrolemember",
                                         "sp_addtype",
                                         "sp_adduser",
                                         "sp_attach_db",
                                         "sp_bindefault",
                                         "sp_bindrule",
                                         "sp_changeobjectowner",
                                         "sp_column_privileges",
                                         "sp_configure",
                                         "sp_databases",
                                         "sp_datatype_info",
                                         "sp_dboption",
                                         "sp_defaultdb",
                                         "sp_depends",
                                         "sp_describe_first_result_set",
                                         "sp_detach_db",
                                         "sp_dropextendedproperty",
                                         "sp_droprolemember",
                                         "sp_dropserver",
                                         "sp_droptype",
                                         "sp_dropuser",
                                         "sp_execute",
                                         "sp_fkeys",
                                         "sp_getapplock",
                                         "sp_grantdbaccess",
                                         "sp_helpconstraint",
                                         "sp_helpdb",
                                         "sp_helpfile",
                                         "sp_helplanguage",
                                         "sp_helplogins",
                                         "sp_helprole",
                                         "sp_helprolemember",
                                         "sp_helpserver",
                                         "sp_helpsort",
                                         "sp_helpstats",
                                         "sp_helptrigger",
                                         "sp_helpuser",
                                         "sp_indexoption",
                                         "sp_lock",
                                         "sp_monitor",
                                         "sp_msforeachdb",
                                         "sp_msforeachtable",
                                         "sp_oacreate",
                                         "sp_oadestroy",
                                         "sp_oagetproperty",
                                         "sp_oamethod",
                                         "sp_oasetproperty",
                                         "sp_password",
                                         "sp_pkeys",
                                         "sp_prepare",
                                         "sp_procoption",
                                         "sp_recompile",
                                         "sp_refreshview",
                                         "sp_releaseapplock",
                                         "sp_rename_database",
                                         "sp_renamedb",
                                         "sp_reset_connection",
                                         "sp_send_dbmail",
                                         "sp_server_info",
                                         "sp_special_columns",
                                         "sp_sproc_columns",
                                         "sp_statistics",
                                         "sp_stored_procedures",
                                         "sp_table_privileges",
                                         "sp_tableoption",
                                         "sp_unbindefault",
                                         "sp_unprepare",
                                         "sp_updateextendedproperty",
                                         "sp_updatestats",
                                         "sp_validname",
                                         "sp_who",
                                         "sp_who2",
                                         "xp_cmdshell",
                                         "xp_fileexist",
                                         "xp_fixeddrives",
                                         "xp_instance_regread",
                                         "xp_msver",
                                         "xp_regread",
                                         "xp_regwrite",
                                         "xp_sendmail"};

}  // namespace

const SystemProcedure* FindSystemProcedure(std::string_view name) {
    for (const SystemProcedure* procedure : kProcedures) {
        if (procedure->name == name) return procedure;
    }
    return nullptr;
}

bool IsServerProcedure(std::string_view name) {
    return std::find(std::begin(kRefused), std::end(kRefused), name) != std::end(kRefused);
}

}  // namespace vicenter::tsql::engine

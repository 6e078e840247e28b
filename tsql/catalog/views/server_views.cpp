// The views of the server's that an account set does not have.

#include <algorithm>

#include "automation/object.h"
#include "text/ascii.h"
#include "tsql/base/text_units.h"
#include "tsql/catalog/system_views.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr std::string_view kOld[] = {
    "sysaltfiles",   "syscacheobjects", "sysconfigures", "sysconstraints", "syscursors",
    "sysdepends",    "sysdevices",      "sysfiles",      "sysfilegroups",  "sysfulltextcatalogs",
    "sysindexkeys",  "syslanguages",    "syslockinfo",   "syslogins",      "sysmembers",
    "sysmessages",   "sysoledbusers",   "sysperfinfo",   "syspermissions", "sysprocesses",
    "sysprotects",   "sysremotelogins", "sysservers",    "sysusers",       "syscharsets",
    "syscurconfigs", "sysopentapes",    "syssegments"};
constexpr std::string_view kSchema[] = {"column_domain_usage", "column_privileges", "constraint_table_usage",
                                        "domain_constraints",  "domains",           "parameters",
                                        "routine_columns",     "sequences",         "table_privileges",
                                        "view_column_usage",   "view_table_usage"};

template <std::size_t N>
bool IsOneOf(std::string_view name, const std::string_view (&names)[N]) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](std::string_view other) { return SameName(name, other); });
}

// The columns of the server's views that ours have nothing to say in. Views of objects share those of
// sys.objects.
struct AbsentColumns {
    std::string_view view;
    std::string_view columns;  // each between blanks
};
constexpr AbsentColumns kAbsent[] = {
    {"databases",
     " source_database_id owner_sid create_date user_access user_access_desc is_auto_close_on "
     "is_auto_shrink_on "
     "is_in_standby is_cleanly_shutdown is_supplemental_logging_enabled snapshot_isolation_state "
     "snapshot_isolation_state_desc is_read_committed_snapshot_on recovery_model recovery_model_desc "
     "page_verify_option page_verify_option_desc is_auto_create_stats_on is_auto_create_stats_incremental_on "
     "is_auto_update_stats_on is_auto_update_stats_async_on is_ansi_null_default_on is_ansi_nulls_on "
     "is_ansi_padding_on is_ansi_warnings_on is_arithabort_on is_concat_null_yields_null_on "
     "is_numeric_roundabort_on is_quoted_identifier_on is_recursive_triggers_on is_cursor_close_on_commit_on "
     "is_local_cursor_default is_fulltext_enabled is_trustworthy_on is_db_chaining_on "
     "is_parameterization_forced "
     "is_master_key_encrypted_by_server is_query_store_on is_published is_subscribed is_merge_published "
     "is_distributor is_sync_with_backup service_broker_guid is_broker_enabled log_reuse_wait "
     "log_reuse_wait_desc is_date_correlation_on is_cdc_enabled is_encrypted is_honor_broker_priority_on "
     "replica_id group_database_id resource_pool_id default_language_lcid default_language_name "
     "default_fulltext_language_lcid default_fulltext_language_name is_nested_triggers_on "
     "is_transform_noise_words_on two_digit_year_cutoff containment containment_desc "
     "target_recovery_time_in_seconds delayed_durability delayed_durability_desc is_federation_member "
     "is_memory_optimized_elevate_to_snapshot_on is_remote_data_archive_enabled is_mixed_page_allocation_on "
     "is_temporal_history_retention_enabled is_accelerated_database_recovery_on catalog_collation_type "
     "catalog_collation_type_desc physical_database_name is_read_only state state_desc compatibility_level "
     "collation_name is_stale_page_detection_on is_memory_optimized_enabled is_ledger_on "},
    {"sysdatabases", " sid mode status status2 crdate reserved category cmptlevel filename version "},
    {"tables",
     " lob_data_space_id filestream_data_space_id max_column_id_used lock_on_bulk_load uses_ansi_nulls "
     "is_replicated has_replication_filter is_merge_published is_sync_tran_subscribed "
     "has_unchecked_assembly_data text_in_row_limit large_value_types_out_of_row is_tracked_by_cdc "
     "lock_escalation lock_escalation_desc is_filetable is_memory_optimized durability durability_desc "
     "temporal_type temporal_type_desc history_table_id is_remote_data_archive_enabled is_external "
     "history_retention_period history_retention_period_unit is_node is_edge ledger_type ledger_view_id "},
    {"views",
     " is_replicated has_replication_filter has_opaque_metadata has_unchecked_assembly_data "
     "with_check_option "
     "is_date_correlation_view is_tracked_by_cdc has_snapshot "},
    {"procedures",
     " is_auto_executed is_execution_replicated is_repl_serializable_only skips_repl_constraints "},
    {"columns",
     " is_ansi_padded is_rowguidcol is_filestream is_replicated is_non_sql_subscribed is_merge_published "
     "is_dts_replicated is_xml_document xml_collection_id rule_object_id is_sparse is_column_set "
     "generated_always_type generated_always_type_desc encryption_type encryption_type_desc "
     "encryption_algorithm_name column_encryption_key_id column_encryption_key_database_name is_hidden "
     "is_masked graph_type graph_type_desc is_data_deletion_filter_column ledger_view_column_type "},
    {"indexes",
     " data_space_id ignore_dup_key fill_factor is_padded is_disabled is_hypothetical "
     "is_ignored_in_optimization allow_row_locks allow_page_locks has_filter filter_definition "
     "compression_delay suppress_dup_key_messages auto_created optimize_for_sequential_key "},
    {"index_columns", " partition_ordinal column_store_order_ordinal "},
    {"foreign_keys",
     " key_index_id is_published is_schema_published is_not_for_replication is_system_named "},
    {"check_constraints", " is_not_for_replication uses_database_collation is_system_named "},
    {"default_constraints", " is_system_named "},
    {"key_constraints", " is_system_named is_enforced "},
    {"identity_columns", " is_not_for_replication "},
    {"computed_columns", " uses_database_collation "},
    {"sql_modules",
     " uses_ansi_nulls uses_quoted_identifier is_schema_bound uses_database_collation is_recompiled "
     "null_on_null_input execute_as_principal_id uses_native_compilation is_inlineable "},
    {"types", " principal_id rule_object_id default_object_id is_assembly_type is_table_type "},
    {"sysobjects",
     " base_schema_ver replinfo ftcatid schema_ver stats_schema_ver userstat sysstat indexdel refdate "
     "version "
     "deltrig instrig updtrig seltrig category cache info crdate "},
    {"syscolumns",
     " typestat xprec xscale xoffset bitpos reserved colstat domain number autoval offset collationid "
     "language "
     "printfmt "},
    {"sysindexes",
     " status first root minlen keycnt groupid dpages reserved used rowcnt rowmodctr xmaxlen maxirow "
     "OrigFillFactor StatVersion FirstIAM impid lockflags pgmodctr keys statblob maxlen "},
    {"syscomments", " number status ctext texttype language encrypted compressed "},
};
constexpr std::string_view kOfObjects =
    " principal_id is_published is_schema_published is_ms_shipped create_date modify_date parent_object_id ";
constexpr std::string_view kObjectViews[] = {"objects",
                                             "tables",
                                             "views",
                                             "procedures",
                                             "foreign_keys",
                                             "check_constraints",
                                             "default_constraints",
                                             "key_constraints"};
// The names of character sets and domains in the older standard's views.
constexpr std::string_view kOfSchemaViews =
    " character_set_catalog character_set_schema character_set_name collation_catalog collation_schema "
    "domain_catalog domain_schema domain_name specific_catalog specific_schema specific_name routine_catalog "
    "module_catalog module_schema module_name udt_catalog udt_schema udt_name type_udt_catalog "
    "type_udt_schema "
    "type_udt_name scope_catalog scope_schema scope_name maximum_cardinality dtd_identifier routine_body "
    "external_name external_language parameter_style is_deterministic sql_data_access is_null_call sql_path "
    "schema_level_routine max_dynamic_result_sets is_user_defined_cast is_implicitly_invocable created "
    "last_altered check_option is_updatable is_deferrable initially_deferred match_option "
    "default_character_set_catalog default_character_set_schema default_character_set_name "
    "numeric_precision_radix datetime_precision interval_type interval_precision character_octet_length "
    "collation_name ";

bool Has(std::string_view columns, std::string_view name) {
    const std::string word = " " + text::LowerAscii(name) + " ";
    return text::LowerAscii(columns).find(word) != std::string::npos;
}

}  // namespace

bool IsServerColumn(std::string_view schema, std::string_view view, std::string_view column) {
    if (SameName(schema, "information_schema")) return Has(kOfSchemaViews, column);
    if (IsOneOf(view, kObjectViews) && Has(kOfObjects, column)) return true;
    return std::any_of(std::begin(kAbsent), std::end(kAbsent), [&](const AbsentColumns& absent) {
        return SameName(view, absent.view) && Has(absent.columns, column);
    });
}

bool IsServerView(const ObjectName& name) {
    const std::string& schema = name.Schema();
    // What the server keeps in databases of its own.
    for (const std::string_view database : {"master", "msdb", "model"}) {
        if (SameName(name.Database(), database)) return true;
    }
    // Nothing else has these schemas.
    if (SameName(schema, "sys")) return true;
    if (SameName(schema, "information_schema")) return IsOneOf(name.Object(), kSchema);
    return IsOneOf(name.Object(), kOld);
}

}  // namespace vicenter::tsql::engine

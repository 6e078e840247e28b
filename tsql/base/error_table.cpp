#include "tsql/base/error_table.h"

#include <algorithm>

namespace vicenter::tsql {
namespace {

using enum Ends;

// Ascending by number. The texts are the server's, to the character. A number is a row and there is one list
// of them, however long it gets; what is done with it stands in error_message.cpp.
constexpr ErrorEntry kErrors[] = {
    {102, 15, kText, "Incorrect syntax near '%.*ls'."},
    {103, 15, kText, "The %S_MSG that starts with '%.*ls' is too long. Maximum length is %d."},
    {104, 16, kText,
     "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT "
     "operator."},
    {105, 15, kText, "Unclosed quotation mark after the character string '%.*ls'."},
    {107, 15, kText,
     "The column prefix '%.*ls' does not match with a table name or alias name used in the query."},
    {108, 16, kText,
     "The ORDER BY position number %ld is out of range of the number of items in the select list."},
    {109, 15, kText,
     "There are more columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {110, 15, kText,
     "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {111, 15, kText, "'%ls' must be the first statement in a query batch."},
    {112, 15, kText, "Variables are not allowed in the %ls statement."},
    {113, 15, kText, "Missing end comment mark '*/'."},
    {116, 16, kText,
     "Only one expression can be specified in the select list when the subquery is not introduced with "
     "EXISTS."},
    {117, 15, kText,
     "The %S_MSG name '%.*ls' contains more than the maximum number of prefixes. The maximum is %d."},
    {119, 15, kText,
     "Must pass parameter number %d and subsequent parameters as '@name = value'. After the form '@name = "
     "value' has been used, all subsequent parameters must be passed in the form '@name = value'."},
    {120, 15, kText,
     "The select list for the INSERT statement contains fewer items than the insert list. The number of "
     "SELECT values must match the number of INSERT columns."},
    {121, 15, kText,
     "The select list for the INSERT statement contains more items than the insert list. The number of "
     "SELECT values must match the number of INSERT columns."},
    {126, 15, kText, "Invalid pseudocolumn \"%.*ls\"."},
    {127, 15, kText, "A TOP N or FETCH rowcount value may not be negative."},
    {128, 15, kText,
     "The name \"%.*ls\" is not permitted in this context. Valid expressions are constants, constant "
     "expressions, and (in some contexts) variables. Column names are not permitted."},
    {130, 16, kText,
     "Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
    {132, 15, kText,
     "The label '%.*ls' has already been declared. Label names must be unique within a query batch or stored "
     "procedure."},
    {133, 15, kText, "A GOTO statement references the label '%.*ls' but the label has not been declared."},
    {134, 15, kText,
     "The variable name '%.*ls' has already been declared. Variable names must be unique within a query "
     "batch or stored procedure."},
    {135, 15, kText, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {136, 15, kText, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {137, 15, kText, "Must declare the scalar variable \"%.*ls\"."},
    {139, 15, kText, "Cannot assign a default value to a local variable."},
    {141, 15, kText,
     "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval "
     "operations."},
    {144, 15, kText,
     "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY "
     "clause."},
    {145, 15, kText, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {147, 15, kText,
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING "
     "clause or a select list, and the column being aggregated is an outer reference."},
    {148, 15, kText, "Incorrect time syntax in time string '%.*ls' used with WAITFOR."},
    {155, 15, kText, "'%.*ls' is not a recognized %ls option."},
    {156, 15, kText, "Incorrect syntax near the keyword '%.*ls'."},
    {157, 15, kText, "An aggregate may not appear in the set list of an UPDATE statement."},
    {164, 15, kText,
     "Each GROUP BY expression must contain at least one column that is not an outer reference."},
    {168, 15, kText,
     "The floating point value '%.*ls' is out of the range of computer representation (%d bytes)."},
    {169, 15, kText,
     "A column has been specified more than once in the order by list. Columns in the order by list must be "
     "unique."},
    {174, 15, kText, "The %.*ls function requires %d argument(s)."},
    {175, 15, kText, "An aggregate may not appear in a computed column expression or check constraint."},
    {177, 15, kText, "The IDENTITY function can only be used when the SELECT statement has an INTO clause."},
    {178, 15, kText, "A RETURN statement with a return value cannot be used in this context."},
    {179, 15, kText, "Cannot use the OUTPUT option when passing a constant to a stored procedure."},
    {180, 15, kText, "There are too many parameters in this %ls statement. The maximum number is %d."},
    {189, 15, kText, "The %ls function requires %d to %d arguments."},
    {191, 15, kText,
     "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
     "queries."},
    {195, 15, kText, "'%.*ls' is not a recognized %S_MSG."},
    {201, 16, kStatement, "Procedure or function '%.*ls' expects parameter '%.*ls', which was not supplied."},
    {203, 16, kText, "The name '%.*ls' is not a valid identifier."},
    {205, 16, kText,
     "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
     "expressions in their target lists."},
    {206, 16, kText, "Operand type clash: %ls is incompatible with %ls"},
    {207, 16, kText, "Invalid column name '%.*ls'."},
    {208, 16, kText, "Invalid object name '%.*ls'."},
    {209, 16, kText, "Ambiguous column name '%.*ls'."},
    {213, 16, kText, "Column name or number of supplied values does not match table definition."},
    {214, 16, kText, "Procedure expects parameter '%ls' of type '%ls'."},
    {217, 16, kBatch,
     "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit %d)."},
    {220, 16, kStatement, "Arithmetic overflow error for data type %ls, value = %ld."},
    {229, 14, kBatch,
     "The %ls permission was denied on the object '%.*ls', database '%.*ls', schema '%.*ls'."},
    {232, 16, kStatement, "Arithmetic overflow error for type %ls, value = %f."},
    {234, 16, kStatement, "There is insufficient result space to convert a %ls value to %ls."},
    {235, 16, kStatement, "Cannot convert a char value to money. The char value has incorrect syntax."},
    {239, 16, kText, "Duplicate common table expression name '%.*ls' was specified."},
    {240, 16, kText,
     "Types don't match between the anchor and the recursive part in column \"%.*ls\" of recursive query "
     "\"%.*ls\"."},
    {241, 16, kBatch, "Conversion failed when converting date and/or time from character string."},
    {242, 16, kStatement,
     "The conversion of a %ls data type to a %ls data type resulted in an out-of-range value."},
    {244, 16, kBatch,
     "The conversion of the %ls value '%.*ls' overflowed an %hs column. Use a larger integer column."},
    {245, 16, kBatch, "Conversion failed when converting the %ls value '%.*ls' to data type %ls."},
    {248, 16, kBatch, "The conversion of the %ls value '%.*ls' overflowed an int column."},
    {252, 16, kText,
     "Recursive common table expression '%.*ls' does not contain a top-level UNION ALL operator."},
    {253, 16, kText,
     "Recursive member of a common table expression '%.*ls' has multiple recursive references."},
    {257, 16, kText,
     "Implicit conversion from data type %ls to %ls is not allowed. Use the CONVERT function to run this "
     "query."},
    {260, 16, kText,
     "Disallowed implicit conversion from data type %ls to data type %ls, table '%.*ls', column '%.*ls'. Use "
     "the CONVERT function to run this query."},
    {262, 14, kBatch, "%ls permission denied in database '%.*ls'."},
    {263, 16, kText, "Must specify table to select from."},
    {264, 16, kText,
     "The column name '%.*ls' is specified more than once in the SET clause or column list of an INSERT. A "
     "column cannot be assigned more than one value in the same clause. Modify the clause to make sure that "
     "a column is updated only once. If this statement updates or inserts columns into a view, column "
     "aliasing can conceal the duplication in your code."},
    {266, 16, kStatement,
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
     "Previous count = %ld, current count = %ld."},
    {271, 16, kText,
     "The column \"%.*ls\" cannot be modified because it is either a computed column or is the result of a "
     "UNION operator."},
    {281, 16, kText, "%d is not a valid style number when converting from %ls to a character string."},
    {289, 16, kStatement,
     "Cannot construct data type %ls, some of the arguments have values which are not valid."},
    {306, 16, kText,
     "The text, ntext, and image data types cannot be compared or sorted, except when using IS NULL or LIKE "
     "operator."},
    {313, 16, kText,
     "An insufficient number of arguments were supplied for the procedure or function %.*ls."},
    {402, 16, kText, "The data types %s and %s are incompatible in the %s operator."},
    {408, 16, kText, "A constant expression was encountered in the ORDER BY list, position %d."},
    {421, 16, kText, "The %ls data type cannot be selected as DISTINCT because it is not comparable."},
    {460, 16, kText,
     "DISTINCT operator is not allowed in the recursive part of a recursive common table expression "
     "'%.*ls'."},
    {461, 16, kText,
     "The TOP or OFFSET operator is not allowed in the recursive part of a recursive common table expression "
     "'%.*ls'."},
    {462, 16, kText,
     "Outer join is not allowed in the recursive part of a recursive common table expression '%.*ls'."},
    {465, 16, kText, "Recursive references are not allowed in subqueries."},
    {467, 16, kText,
     "GROUP BY, HAVING, or aggregate functions are not allowed in the recursive part of a recursive common "
     "table expression '%.*ls'."},
    {468, 16, kText,
     "Cannot resolve the collation conflict between \"%.*ls\" and \"%.*ls\" in the %ls operation."},
    {506, 16, kStatement, "The invalid escape character \"%.*ls\" was specified in a %ls predicate."},
    {512, 16, kStatement,
     "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= , >, "
     ">= or when the subquery is used as an expression."},
    {515, 16, kStatement,
     "Cannot insert the value NULL into column '%.*ls', table '%.*ls'; column does not allow nulls. %ls "
     "fails."},
    {517, 16, kStatement, "Adding a value to a '%ls' column caused an overflow."},
    {529, 16, kText, "Explicit conversion from data type %ls to %ls is not allowed."},
    {530, 16, kStatement,
     "The statement terminated. The maximum recursion %d has been exhausted before statement completion."},
    {535, 16, kStatement,
     "The %.*ls function resulted in an overflow. The number of dateparts separating two date/time instances "
     "is too large. Try to use %.*ls with a less precise datepart."},
    {536, 16, kStatement, "Invalid length parameter passed to the %ls function."},
    {537, 16, kStatement, "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    {544, 16, kStatement,
     "Cannot insert explicit value for identity column in table '%.*ls' when IDENTITY_INSERT is set to OFF."},
    {545, 16, kStatement,
     "Explicit value must be specified for identity column in table '%.*ls' either when IDENTITY_INSERT is "
     "set to ON or when a replication user is inserting into a NOT FOR REPLICATION identity column."},
    {547, 16, kStatement,
     "The %ls statement conflicted with the %ls constraint \"%.*ls\". The conflict occurred in database "
     "\"%.*ls\", table \"%.*ls\"%ls%.*ls%ls."},
    {550, 16, kStatement,
     "The attempted insert or update failed because the target view either specifies WITH CHECK OPTION or "
     "spans a view that specifies WITH CHECK OPTION and one or more rows resulting from the operation did not "
     "qualify under the CHECK OPTION constraint."},
    {628, 16, kStatement, "Cannot issue SAVE TRANSACTION when there is no active transaction."},
    {701, 17, kBatch, "There is insufficient system memory in resource pool 'default' to run this query."},
    {823, 24, kBatch, "The account set '%.*ls' cannot be read or written: %ls."},
    {824, 24, kBatch, "The account set '%.*ls' is damaged: %ls."},
    {911, 16, kText, "Database '%.*ls' does not exist. Make sure that the name is entered correctly."},
    {948, 20, kBatch,
     "The database '%.*ls' cannot be opened because it is version %d. This server supports version %d and "
     "earlier. A downgrade path is not supported."},
    {1002, 16, kText, "Line %d: Specified scale %d is invalid."},
    {1007, 15, kText,
     "The number '%.*ls' is out of the range for numeric representation (maximum precision 38)."},
    {1008, 16, kText,
     "The SELECT item identified by the ORDER BY number %d contains a variable as part of the expression "
     "identifying a column position. Variables are only allowed when ordering by an expression referencing a "
     "column name."},
    {1011, 16, kText, "The correlation name '%.*ls' is specified multiple times in a FROM clause."},
    {1013, 16, kText,
     "The objects \"%.*ls\" and \"%.*ls\" in the FROM clause have the same exposed names. Use correlation "
     "names to distinguish them."},
    {1031, 15, kText, "Percent values must be between 0 and 100."},
    {1033, 15, kText,
     "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
     "table expressions, unless TOP, OFFSET or FOR XML is also specified."},
    {1038, 15, kText,
     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
     "name. For other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. "
     "Change the alias to a valid name."},
    {1046, 15, kText, "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    {1060, 15, kText,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer."},
    {1062, 15, kText, "The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause."},
    {1087, 15, kText, "Must declare the table variable \"%.*ls\"."},
    {1088, 15, kText,
     "Cannot find the object \"%.*ls\" because it does not exist or you do not have permissions."},
    {1205, 13, kBatch,
     "Transaction (Process ID %d) was deadlocked on %.*ls resources with another process and has been chosen "
     "as the deadlock victim. Rerun the transaction."},
    {1222, 16, kStatement, "Lock request time out period exceeded."},
    {1505, 16, kStatement,
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name "
     "'%.*ls' and the index name '%.*ls'.  The duplicate key value is %ls."},
    {1702, 16, kText,
     "CREATE TABLE failed because column '%.*ls' in table '%.*ls' exceeds the maximum of %d columns."},
    {1750, 16, kText, "Could not create constraint or index. See previous errors."},
    {1752, 16, kText, "Column '%.*ls' in table '%.*ls' is invalid for creating a default constraint."},
    {1753, 16, kText,
     "Column '%.*ls.%.*ls' is not the same length or scale as referencing column '%.*ls.%.*ls' in foreign "
     "key "
     "'%.*ls'. Columns participating in a foreign key relationship must be defined with the same length and "
     "scale."},
    {1754, 16, kText,
     "Defaults cannot be created on columns with an IDENTITY attribute. Table '%.*ls', column '%.*ls'."},
    {1759, 16, kText,
     "Computed column '%.*ls' in table '%.*ls' is not allowed to be used in another computed-column "
     "definition."},
    {1761, 16, kText,
     "Cannot create the foreign key \"%.*ls\" with the SET NULL referential action, because one or more "
     "referencing columns are not nullable."},
    {1762, 16, kText,
     "Cannot create the foreign key \"%.*ls\" with the SET DEFAULT referential action, because one or more "
     "referencing not-nullable columns lack a default constraint."},
    {1767, 16, kText, "Foreign key '%.*ls' references invalid table '%.*ls'."},
    {1769, 16, kText, "Foreign key '%.*ls' references invalid column '%.*ls' in referencing table '%.*ls'."},
    {1770, 16, kText, "Foreign key '%.*ls' references invalid column '%.*ls' in referenced table '%.*ls'."},
    {1776, 16, kText,
     "There are no primary or candidate keys in the referenced table '%.*ls' that match the referencing "
     "column list in the foreign key '%.*ls'."},
    {1778, 16, kText,
     "Column '%.*ls.%.*ls' is not the same data type as referencing column '%.*ls.%.*ls' in foreign key "
     "'%.*ls'."},
    {1779, 16, kText, "Table '%.*ls' already has a primary key defined on it."},
    {1781, 16, kText, "Column already has a DEFAULT bound to it."},
    {1785, 16, kText,
     "Introducing FOREIGN KEY constraint '%.*ls' on table '%.*ls' may cause cycles or multiple cascade "
     "paths. Specify ON DELETE NO ACTION or ON UPDATE NO ACTION, or modify other FOREIGN KEY constraints."},
    {1801, 16, kText, "Database '%.*ls' already exists. Choose a different database name."},
    {1902, 16, kText,
     "Cannot create more than one clustered index on %S_MSG '%.*ls'. Drop the existing clustered index "
     "'%.*ls' before creating another."},
    {1911, 16, kText, "Column name '%.*ls' does not exist in the target table or view."},
    {1913, 16, kText,
     "The operation failed because an index or statistics with name '%.*ls' already exists on %S_MSG "
     "'%.*ls'."},
    {1919, 16, kText,
     "Column '%.*ls' in table '%.*ls' is of a type that is invalid for use as a key column in an index."},
    {2601, 14, kStatement,
     "Cannot insert duplicate key row in object '%.*ls' with unique index '%.*ls'. The duplicate key value "
     "is %ls."},
    {2627, 14, kStatement,
     "Violation of %ls constraint '%.*ls'. Cannot insert duplicate key in object '%.*ls'. The duplicate key "
     "value is %ls."},
    {2628, 16, kStatement,
     "String or binary data would be truncated in table '%.*ls', column '%.*ls'. Truncated value: '%.*ls'."},
    {2705, 16, kText,
     "Column names in each table must be unique. Column name '%.*ls' in table '%.*ls' is specified more than "
     "once."},
    {2714, 16, kText, "There is already an object named '%.*ls' in the database."},
    {2715, 16, kText, "Column, parameter, or variable #%d: Cannot find data type %.*ls."},
    {2716, 16, kText,
     "Column, parameter, or variable #%d: Cannot specify a column width on data type %.*ls."},
    {2717, 16, kText, "The size (%d) given to the %S_MSG '%.*ls' exceeds the maximum allowed (%d)."},
    {2739, 16, kText, "The text, ntext, and image data types are invalid for local variables."},
    {2741, 16, kStatement, "SET DATEFORMAT date order '%.*ls' is invalid."},
    {2742, 16, kStatement, "SET DATEFIRST %d is out of range."},
    {2744, 16, kText,
     "Multiple identity columns specified for table '%.*ls'. Only one identity column per table is allowed."},
    {2749, 16, kText,
     "Identity column '%.*ls' must be of data type int, bigint, smallint, tinyint, or decimal or numeric "
     "with a scale of 0, unencrypted, and constrained to be nonnullable."},
    {2750, 16, kText,
     "Column or parameter #%d: Specified column precision %d is greater than the maximum precision of %d."},
    {2751, 16, kText,
     "Column or parameter #%d: Specified column scale %d is greater than the specified precision of %d."},
    {2754, 16, kStatement,
     "Error severity levels greater than %d can only be specified by members of the sysadmin role, using the "
     "WITH LOG option."},
    {2786, 16, kStatement,
     "The data type of substitution parameter %d does not match the expected type of the format "
     "specification."},
    {2787, 16, kStatement, "Invalid format specification: '%.*ls'."},
    {2812, 16, kStatement, "Could not find stored procedure '%.*ls'."},
    {3609, 16, kBatch, "The transaction ended in the trigger. The batch has been aborted."},
    {3617, 10, kBatch, "The query has been canceled by the user."},
    {3623, 16, kStatement, "An invalid floating point operation occurred."},
    {3701, 11, kStatement,
     "Cannot %S_MSG the %S_MSG '%.*ls', because it does not exist or you do not have permission."},
    {3705, 16, kStatement, "Cannot use DROP %ls with '%.*ls' because '%.*ls' is a %S_MSG. Use %ls."},
    {3723, 16, kStatement,
     "An explicit DROP INDEX is not allowed on index '%.*ls'. It is being used for %ls constraint "
     "enforcement."},
    {3725, 16, kStatement,
     "The constraint '%.*ls' is being referenced by table '%.*ls', foreign key constraint '%.*ls'."},
    {3726, 16, kStatement,
     "Could not drop object '%.*ls' because it is referenced by a FOREIGN KEY constraint."},
    {3727, 10, kStatement, "Could not drop constraint. See previous errors."},
    {3728, 16, kStatement, "'%.*ls' is not a constraint."},
    {3729, 16, kStatement, "Cannot %ls '%.*ls' because it is being referenced by object '%.*ls'."},
    {3902, 16, kStatement, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3903, 16, kStatement, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3906, 16, kBatch, "Failed to update database \"%.*ls\" because the database is read-only."},
    {3915, 16, kBatch, "Cannot use the ROLLBACK statement within an INSERT-EXEC statement."},
    {3916, 16, kBatch,
     "Cannot use the COMMIT statement within an INSERT-EXEC statement unless BEGIN TRANSACTION is used first."},
    {3930, 16, kBatch,
     "The current transaction cannot be committed and cannot support operations that write to the log file. "
     "Roll back the transaction."},
    {3998, 16, kBatch,
     "Uncommittable transaction is detected at the end of the batch. The transaction is rolled back."},
    {4103, 15, kText, "\"%.*ls\": Temporary views are not allowed."},
    {4104, 16, kText, "The multi-part identifier \"%.*ls\" could not be bound."},
    {4108, 15, kText, "Windowed functions can only appear in the SELECT or ORDER BY clauses."},
    {4109, 15, kText,
     "Windowed functions cannot be used in the context of another windowed function or aggregate."},
    {4112, 15, kText, "The function '%.*ls' must have an OVER clause with ORDER BY."},
    {4113, 16, kText,
     "The function '%.*ls' is not a valid windowing function, and cannot be used with the OVER clause."},
    {4116, 16, kText, "The function 'ntile' takes only a positive int or bigint expression as its input."},
    {4121, 16, kText,
     "Cannot find either column \"%.*ls\" or the user-defined function or aggregate \"%.*ls\", or the name "
     "is "
     "ambiguous."},
    {4127, 16, kText,
     "At least one of the arguments to %ls must be an expression that is not the NULL constant."},
    {4145, 15, kText,
     "An expression of non-boolean type specified in a context where a condition is expected, near '%.*ls'."},
    {4151, 16, kText,
     "The type of the first argument to NULLIF cannot be the NULL constant because the type of the first "
     "argument has to be known."},
    {4193, 16, kText, "'%.*ls' is not a valid window frame and cannot be used with the OVER clause."},
    {4194, 16, kText, "RANGE is only supported with UNBOUNDED and CURRENT ROW window frame delimiters."},
    {4403, 16, kText,
     "Cannot update the view or function '%.*ls' because it contains aggregates, or a DISTINCT or GROUP BY "
     "clause, or PIVOT or UNPIVOT operator."},
    {4405, 16, kText,
     "View or function '%.*ls' is not updatable because the modification affects multiple base tables."},
    {4406, 16, kText,
     "Update or insert of view or function '%.*ls' failed because it contains a derived or constant field."},
    {4413, 16, kText, "Could not use view or function '%.*ls' because of binding errors."},
    {4506, 16, kText,
     "Column names in each view or function must be unique. Column name '%.*ls' in view or function '%.*ls' "
     "is specified more than once."},
    {4508, 16, kText,
     "Views or functions are not allowed on temporary tables. Table names that begin with '#' denote temporary "
     "tables."},
    {4511, 16, kText, "Create View or Function failed because no column name was specified for column %d."},
    {4701, 16, kText,
     "Cannot find the object \"%.*ls\" because it does not exist or you do not have permissions."},
    {4712, 16, kStatement,
     "Cannot truncate table '%.*ls' because it is being referenced by a FOREIGN KEY constraint."},
    {4901, 16, kText,
     "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition "
     "specified, or the column being added is an identity or timestamp column, or alternatively if none of "
     "the previous conditions are satisfied the table must be empty to allow addition of this column. Column "
     "'%.*ls' cannot be added to non-empty table '%.*ls' because it does not satisfy these conditions."},
    {4902, 16, kText,
     "Cannot find the object \"%.*ls\" because it does not exist or you do not have permissions."},
    {4922, 16, kStatement, "%ls %.*ls failed because one or more objects access this column."},
    {4923, 16, kStatement,
     "%ls failed because '%.*ls' is the only data column in table '%.*ls'. A table must have at least one "
     "data "
     "column."},
    {4924, 16, kStatement, "%ls failed because column '%.*ls' does not exist in table '%.*ls'."},
    {4928, 16, kStatement, "Cannot alter column '%.*ls' because it is '%ls'."},
    {5074, 16, kStatement, "The %S_MSG '%.*ls' is dependent on %S_MSG '%.*ls'."},
    {5120, 16, kBatch, "Unable to open the physical file \"%.*ls\": %ls."},
    {5172, 16, kBatch, "The file '%.*ls' is not an account set."},
    {5308, 16, kText,
     "Windowed functions, aggregates and NEXT VALUE FOR functions do not support integer indices as ORDER BY "
     "clause expressions."},
    {5309, 16, kText,
     "Windowed functions, aggregates and NEXT VALUE FOR functions do not support constants as ORDER BY "
     "clause "
     "expressions."},
    {5324, 15, kText,
     "In a MERGE statement, a '%S_MSG' clause with a search condition cannot appear after a '%S_MSG' clause "
     "with no search condition."},
    {5335, 16, kText,
     "The data type %ls cannot be used as an operand to the UNION, INTERSECT or EXCEPT operators because it is "
     "not comparable."},
    {6401, 16, kStatement, "Cannot roll back %.*ls. No transaction or savepoint of that name was found."},
    {8101, 16, kText,
     "An explicit value for the identity column in table '%.*ls' can only be specified when a column list is "
     "used and IDENTITY_INSERT is ON."},
    {8102, 16, kText, "Cannot update identity column '%.*ls'."},
    {8106, 16, kStatement,
     "Table '%.*ls' does not have the identity property. Cannot perform SET operation."},
    {8107, 16, kStatement,
     "IDENTITY_INSERT is already ON for table '%.*ls.%.*ls.%.*ls'. Cannot perform SET operation for table "
     "'%.*ls'."},
    {8110, 16, kText, "Cannot add multiple PRIMARY KEY constraints to table '%.*ls'."},
    {8111, 16, kText, "Cannot define PRIMARY KEY constraint on nullable column in table '%.*ls'."},
    {8114, 16, kBatch, "Error converting data type %ls to %ls."},
    {8115, 16, kStatement, "Arithmetic overflow error converting %ls to data type %ls."},
    {8116, 16, kText, "Argument data type %ls is invalid for argument %d of %ls function."},
    {8117, 16, kText, "Operand data type %ls is invalid for %ls operator."},
    {8118, 16, kText,
     "Column '%.*ls.%.*ls' is invalid in the select list because it is not contained in an aggregate "
     "function and there is no GROUP BY clause."},
    {8120, 16, kText,
     "Column '%.*ls.%.*ls' is invalid in the select list because it is not contained in either an aggregate "
     "function or the GROUP BY clause."},
    {8121, 16, kText,
     "Column '%.*ls.%.*ls' is invalid in the HAVING clause because it is not contained in either an "
     "aggregate function or the GROUP BY clause."},
    {8124, 16, kText,
     "Multiple columns are specified in an aggregated expression containing an outer reference. If an "
     "expression being aggregated contains an outer reference, then that outer reference must be the only "
     "column referenced in the expression."},
    {8127, 16, kText,
     "Column \"%.*ls.%.*ls\" is invalid in the ORDER BY clause because it is not contained in either an "
     "aggregate function or the GROUP BY clause."},
    {8134, 16, kStatement, "Divide by zero error encountered."},
    {8139, 16, kText,
     "Number of referencing columns in foreign key differs from number of referenced columns, table "
     "'%.*ls'."},
    {8141, 16, kText, "Column %ls constraint for column '%.*ls' references another column, table '%.*ls'."},
    {8143, 16, kStatement, "Parameter '%.*ls' was supplied multiple times."},
    {8144, 16, kStatement, "Procedure or function %.*ls has too many arguments specified."},
    {8145, 16, kStatement, "%.*ls is not a parameter for procedure %.*ls."},
    {8146, 16, kStatement, "Procedure %.*ls has no parameters and arguments were supplied."},
    {8147, 16, kText, "Could not create IDENTITY attribute on nullable column '%.*ls', table '%.*ls'."},
    {8148, 16, kText, "More than one column %ls constraint specified for column '%.*ls', table '%.*ls'."},
    {8152, 16, kStatement, "String or binary data would be truncated."},
    {8155, 15, kText, "No column name was specified for column %d of '%.*ls'."},
    {8156, 16, kText, "The column '%.*ls' was specified multiple times for '%.*ls'."},
    {8158, 16, kText, "'%.*ls' has more columns than were specified in the column list."},
    {8159, 16, kText, "'%.*ls' has fewer columns than were specified in the column list."},
    {8161, 16, kText,
     "Argument 1 of the %.*ls function does not match any of the expressions in the GROUP BY clause."},
    {8162, 16, kStatement,
     "The formal parameter \"%.*ls\" was not declared as an OUTPUT parameter, but the actual parameter "
     "passed in requested output."},
    {8164, 16, kStatement, "An INSERT EXEC statement cannot be nested."},
    {8167, 16, kText,
     "The type of column \"%.*ls\" conflicts with the type of other columns specified in the UNPIVOT list."},
    {8169, 16, kBatch, "Conversion failed when converting from a character string to uniqueidentifier."},
    {8178, 16, kStatement,
     "The parameterized query '%.*ls' expects the parameter '%.*ls', which was not supplied."},
    {8623, 16, kBatch,
     "The query processor ran out of internal resources and could not produce a query plan. This is a rare "
     "event and only expected for extremely complex queries or queries that reference a very large number of "
     "tables or partitions. Please simplify the query. If you believe you have received this message in "
     "error, contact Customer Support Services for more information."},
    {8624, 16, kBatch,
     "Internal Query Processor Error: The query processor could not produce a query plan. %ls"},
    {8672, 16, kStatement,
     "The MERGE statement attempted to UPDATE or DELETE the same row more than once. This happens when a "
     "target row matches more than one source row. A MERGE statement cannot UPDATE/DELETE the same row of "
     "the target table multiple times. Refine the ON clause to ensure a target row matches at most one "
     "source row, or use the GROUP BY clause to group the source rows."},
    {8730, 16, kText, "Offset parameter for Lag and Lead functions cannot be a negative value."},
    {9002, 17, kBatch, "The transaction log for database '%.*ls' is full due to '%ls'."},
    {9810, 16, kText, "The datepart %.*ls is not supported by date function %.*ls for data type %.*ls."},
    {9829, 16, kStatement,
     "STRING_AGG aggregation result exceeded the limit of %d bytes. Use LOB types to avoid result truncation."},
    {10700, 16, kText, "The table-valued parameter \"%.*ls\" is READONLY and cannot be modified."},
    {10703, 15, kText, "Too many grouping sets. The maximum number is 4096."},
    {10704, 15, kText,
     "To rethrow an error, a THROW statement must be used inside a CATCH block. Insert the THROW statement "
     "inside a CATCH block, or add error parameters to the THROW statement."},
    {10709, 16, kText, "The number of columns for each row in a table value constructor must be the same."},
    {10711, 15, kText,
     "An action of type '%S_MSG' is not allowed in the '%S_MSG' clause of a MERGE statement."},
    {10713, 15, kText, "A MERGE statement must be terminated by a semi-colon (;)."},
    {10714, 15, kText,
     "An action of type '%S_MSG' cannot appear more than once in a '%S_MSG' clause of a MERGE statement."},
    {10738, 15, kText,
     "The number of row value expressions in the INSERT statement exceeds the maximum allowed number of %d "
     "row values."},
    {10741, 15, kText, "A TOP can not be used in the same query or sub-query as a OFFSET."},
    {10742, 15, kText, "The offset specified in a OFFSET clause may not be negative."},
    {10743, 15, kText, "The number of rows provided for an OFFSET clause must be an integer."},
    {10744, 15, kText, "The number of rows provided for a FETCH clause must be greater then zero."},
    {10752, 15, kText, "The function '%.*ls' may not have a window frame."},
    {10753, 15, kText, "The function '%.*ls' must have an OVER clause."},
    {10756, 15, kText, "Window frame with ROWS or RANGE must have an ORDER BY clause."},
    {10757, 15, kText, "The function '%.*ls' may not have a WITHIN GROUP clause."},
    {10759, 15, kText, "Use of DISTINCT is not allowed with the OVER clause."},
    {15009, 11, kStatement,
     "The object '%.*ls' does not exist in database '%.*ls' or is invalid for this operation."},
    {15197, 16, kStatement, "There is no text for object '%ls'."},
    {15225, 11, kStatement,
     "No item by the name of '%ls' could be found in the current database '%ls', given that @itemtype was "
     "input as '%ls'."},
    {15248, 11, kStatement,
     "Either the parameter @objname is ambiguous or the claimed @objtype (%ls) is wrong."},
    {15335, 11, kStatement,
     "Error: The new name '%ls' is already in use as a %ls name and would cause a duplicate that is not "
     "permitted."},
    {15336, 16, kStatement,
     "Object '%ls' cannot be renamed because the object participates in enforced dependencies."},
    {15477, 10, kStatement,
     "Caution: Changing any part of an object name could break scripts and stored procedures."},
    {16902, 16, kStatement, "%ls: The value of the parameter %ls is invalid."},
    {16905, 16, kStatement, "The cursor is already open."},
    {16911, 16, kStatement, "%ls: The fetch type %ls cannot be used with forward only cursors."},
    {16915, 16, kStatement, "A cursor with the name '%.*ls' already exists."},
    {16916, 16, kStatement, "A cursor with the name '%.*ls' does not exist."},
    {16917, 16, kStatement, "Cursor is not open."},
    {16922, 16, kStatement, "Cursor Fetch: Implicit conversion from data type %s to %s is not allowed."},
    {16924, 16, kStatement,
     "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns."},
    {16929, 16, kStatement, "The cursor is READ ONLY."},
    {16931, 16, kStatement, "There are no rows in the current fetch buffer."},
    {16932, 16, kStatement,
     "The cursor has a FOR UPDATE list and the requested column to be updated is not in this list."},
    {16933, 16, kStatement,
     "The cursor does not include the table being modified or the table is not updatable through the "
     "cursor."},
    {16943, 16, kStatement,
     "Could not complete cursor operation because the table schema changed after the cursor was declared."},
    {16947, 16, kStatement, "No rows were updated or deleted."},
    {16948, 16, kStatement,
     "The variable '%.*ls' is not a cursor variable, but it is used in a place where a cursor variable is "
     "expected."},
    {16949, 16, kStatement,
     "The variable '%.*ls' is a cursor variable, but it is used in a place where a cursor variable is not "
     "valid."},
    {16950, 16, kStatement, "The variable '%.*ls' does not currently have a cursor allocated to it."},
    {18054, 16, kStatement,
     "Error %d, severity %d, state %d was raised, but no message with that error number was found in "
     "sys.messages. If error is larger than 50000, make sure the user-defined message is added using "
     "sp_addmessage."},
    {35100, 16, kText,
     "Error number %d in the THROW statement is outside the valid range. Specify an error number in the "
     "valid range of 50000 to 2147483647."},
    {40510, 16, kBatch, "Statement '%.*ls' is not supported by the embedded account set."},
    {40515, 15, kBatch,
     "Reference to database and/or server name in '%.*ls' is not supported by the embedded account set."},
    {50000, 16, kStatement, "%ls"},
};

}  // namespace

std::span<const ErrorEntry> ErrorTable() {
    return kErrors;
}

const ErrorEntry* FindError(std::int32_t number) {
    const auto* found =
        std::lower_bound(std::begin(kErrors), std::end(kErrors), number,
                         [](const ErrorEntry& entry, std::int32_t n) { return entry.number < n; });
    return found != std::end(kErrors) && found->number == number ? found : nullptr;
}

}  // namespace vicenter::tsql

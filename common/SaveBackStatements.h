#pragma once
// Statements and messages of the save-back's two options, beside the transfers' own
// statements: the all-or-nothing run (one server transaction on the caller's connection)
// and the preview (the save-back's detection statements into temporary tables, then reads
// of them). The families' statements themselves stay in the transfers' headers, unchanged.

namespace sbo {

// ---- All-or-nothing ----
constexpr const char* SQL_START_TRANSACTION = "start transaction";
constexpr const char* SQL_COMMIT = "commit";
constexpr const char* SQL_ROLLBACK = "rollback";
// After a rollback: the server warns (code 1196) when a table it changed is not
// transactional, so that not everything was undone.
constexpr const char* SQL_SHOW_WARNINGS = "show warnings";
constexpr int WARNING_NOT_ROLLED_BACK = 1196;
// A statement or the commit lost to a concurrent change of the same rows: a deadlock on
// one server, a certification failure (or a transaction aborted by a replicated one) on a
// Galera cluster. Either way the server has rolled the transaction back.
constexpr const char* SERVER_DEADLOCK = "1213";
// The client lost its connection: before a reply to COMMIT, the outcome is not known.
constexpr const char* CLIENT_SERVER_GONE = "2006";
constexpr const char* CLIENT_SERVER_LOST = "2013";

// Before the run's first write of a table: whether its engine can roll back. The name as
// the statement spells it: the server finds it as it finds the table (a function of the
// column would make it read the whole catalogue of the database instead).
constexpr const char* SQL_TRANSACTIONAL =
    "select e.TRANSACTIONS from information_schema.TABLES t, information_schema.ENGINES e where "
    "e.ENGINE=t.ENGINE and t.TABLE_SCHEMA=database() and t.TABLE_NAME='%s'";

constexpr const char* MSG_NOT_TRANSACTIONAL =
    "数据表 %s 不是事务表（须为 InnoDB），不能以全部或全不方式回存。";
constexpr const char* MSG_IN_CALLERS_TRANSACTION =
    "连接上有未结束的事务，不能在其中以全部或全不方式回存，未作任何修改。";
constexpr const char* MSG_ENDS_TRANSACTION =
    "该语句会结束事务，不能在全部或全不方式的回存中执行：%s";
constexpr const char* MSG_CANNOT_ASK_TRANSACTION =
    "无法得知连接上是否有未结束的事务（连接须为 MySQL 或 MariaDB 的连接），不能以全部或全不方式回存，未作任何修改。";
// A table whose engine the catalogue does not give (a view, an engine not loaded, a name
// the catalogue does not hold).
constexpr const char* MSG_ENGINE_UNKNOWN =
    "无法读出数据表 %s 的存储引擎（视图、未加载的引擎或目录中没有该表），不能确认回滚可以撤销对它的修改，"
    "不能以全部或全不方式回存。";
// The session that began the transaction is gone (the connection broke and the client
// reconnected): the server rolled back what the run did in it, and what ran after the
// reconnection ran outside any transaction.
constexpr const char* MSG_SESSION_CHANGED =
    "回存过程中连接中断后重新连接（会话 %lu 变为 %lu）：服务器已撤销事务中的修改，重新连接后执行的语句"
    "不在事务中，可能已经保存，基础库可能只保存了部分修改，请查看基础库。";
constexpr const char* MSG_NOTHING_SAVED = "回存失败，已全部撤销，基础库未保存任何修改。";
constexpr const char* MSG_CONFLICT_NOTHING_SAVED =
    "回存与其他连接（或集群其他节点）同时对相同数据的修改冲突，已全部撤销，基础库未保存任何修改，可重新回存。";
constexpr const char* MSG_COMMIT_UNKNOWN =
    "提交回存时与服务器的连接中断，无法得知修改是否已保存，请查看基础库。";
constexpr const char* MSG_NOT_ALL_UNDONE =
    "回存失败，已撤销事务中的修改，但服务器报告有非事务表的修改无法撤销。";

// ---- Names written into a data group ----
constexpr const char* MSG_GROUP_TOO_LONG =
    "数据组名 %s 超过20字节（汉字按2字节计），数据组中存不下，回存未执行，基础库未作任何修改。";
// The updates of the copies in a group find them by the group's name: when they change no
// row, the server holds the copies under another name than the one given.
constexpr const char* MSG_GROUP_UPDATE_MISSED =
    "写入数据组的修改没有改动任何行（服务器中保存的数据组名与所给的不同），回存失败：%s";

// ---- Preview ----
// The changes of one in-place update: the base row's id and name, then for each of the
// update's assignments whether the base column and the new value are equal, the one and the
// other ("a.X<=>b.Y, a.X, b.Y"), from the update's own tables and condition.
constexpr const char* SQL_PREVIEW_CHANGES = "select a.id, a.ID_Name, %s from %s a, %s b where %s";
// A write the preview does not run is checked by the server all the same: parsed and its
// names resolved, not executed.
constexpr const char* SQL_PREVIEW_PREPARE = "prepare calcdata_preview from %s";
constexpr const char* SQL_PREVIEW_DEALLOCATE = "deallocate prepare calcdata_preview";
// The preview's own clean-up of the tables its detection made: never ends a transaction
// when the table is temporary.
constexpr const char* SQL_DROP_TEMPORARY = "drop temporary table if exists %s";
constexpr const char* SQL_DROP_WORKING = "drop table if exists %s";

constexpr const char* MSG_PREVIEW_IN_CALLERS_TRANSACTION =
    "预览需执行会结束事务的语句，而连接上有未结束的事务，预览在此停止：%s";
constexpr const char* MSG_PREVIEW_UNREADABLE = "预览无法从该语句读出变化：%s";
constexpr const char* MSG_PREVIEW_DUPLICATE_COLUMN = "列 %s 在插入语句中出现两次";
constexpr const char* MSG_PREVIEW_COLUMN_COUNT = "插入语句的列数 %d 与值的个数 %d 不符";

} // namespace sbo

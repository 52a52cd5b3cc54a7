#include "standalone/files/database.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstring>
#include <new>

namespace standalone {

namespace {

constexpr int kMostRowBytes = 1 << 27;  // of one row; 2000 strings of the greatest width take half of that
constexpr int kMostStatementBytes = 1 << 20;
constexpr int kWaitMilliseconds = 2000;  // for another program that is writing the file

const char* Clause(int status) {
  switch (status & 0xFF) {
    case SQLITE_NOTADB:
      return "it is no case file";
    case SQLITE_CORRUPT:
      return "the file is damaged";
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program is writing the file";
    case SQLITE_TOOBIG:
      return "a value or a case is too large";
    default:
      return nullptr;
  }
}

/// The failure in words; a failure of the system gets the system's words.
std::string Describe(sqlite3* handle, int status) {
  if (const char* clause = Clause(status)) return clause;
  const int kind = status & 0xFF;
  const int systemError = handle != nullptr ? sqlite3_system_errno(handle) : 0;
  if ((kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN) && systemError != 0)
    return std::strerror(systemError);
  return handle != nullptr ? sqlite3_errmsg(handle) : sqlite3_errstr(status);
}

}  // namespace

Database::Database(const std::filesystem::path& path, Use use) {
  if (!Open(path, use)) return;
  Restrict(use);
  // Nobody else knows the file, and on failure it is thrown away: it needs no journal to go back by, no
  // locks, and no waiting for the disk, to which PendingFile brings it once it is whole.
  if (use == Use::kWriting)
    Execute("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA locking_mode=EXCLUSIVE");
}

Database::~Database() {
  sqlite3_close(fpHandle);
}

bool Database::Open(const std::filesystem::path& path, Use use) {
  const int flags = use == Use::kReading ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  return Check(
      sqlite3_open_v2(path.c_str(), &fpHandle, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr));
}

void Database::Restrict(Use use) {
  // A database from elsewhere may hold SQL of its own (views, triggers, defaults, computed columns) that
  // runs when it is read, and may be damaged so as to lead a reader astray. These are the measures that the
  // SQLite project recommends for such files ("Defense Against The Dark Arts").
  const auto turn = [this](int setting, int value) {
    Check(sqlite3_db_config(fpHandle, setting, value, nullptr));
  };
  if (use == Use::kReading) turn(SQLITE_DBCONFIG_DEFENSIVE, 1);  // it also forbids to do without a journal
  turn(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
  turn(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0);
  turn(SQLITE_DBCONFIG_ENABLE_VIEW, 0);
  turn(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0);
  turn(SQLITE_DBCONFIG_DQS_DDL, 0);  // a name in quotes that isn't there must not turn into a text
  turn(SQLITE_DBCONFIG_DQS_DML, 0);
  sqlite3_limit(fpHandle, SQLITE_LIMIT_LENGTH, kMostRowBytes);
  sqlite3_limit(fpHandle, SQLITE_LIMIT_SQL_LENGTH, kMostStatementBytes);
  sqlite3_limit(fpHandle, SQLITE_LIMIT_EXPR_DEPTH, 20);
  sqlite3_limit(fpHandle, SQLITE_LIMIT_COMPOUND_SELECT, 2);
  sqlite3_limit(fpHandle, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_busy_timeout(fpHandle, kWaitMilliseconds);
  // Damaged pages are found before they are used. A file mapped into memory that another program cuts short
  // would end this one by a signal, so it is read by calls.
  Execute("PRAGMA cell_size_check=ON; PRAGMA mmap_size=0");
}

bool Database::Fail(std::string error) {
  if (fError.empty()) fError = std::move(error);
  return false;
}

bool Database::Check(int status) {
  if ((status & 0xFF) == SQLITE_NOMEM) throw std::bad_alloc();
  if (status == SQLITE_OK || status == SQLITE_ROW || status == SQLITE_DONE) return !Failed();
  return Fail(Describe(fpHandle, status));
}

bool Database::Execute(const char* sql) {
  return !Failed() && Check(sqlite3_exec(fpHandle, sql, nullptr, nullptr, nullptr));
}

std::int64_t Database::Ask(const char* sql) {
  Statement statement(*this, sql);
  return statement.NextRow() ? statement.Whole(0) : 0;
}

std::size_t Database::MostColumns() const {
  return static_cast<std::size_t>(sqlite3_limit(fpHandle, SQLITE_LIMIT_COLUMN, -1));
}

bool Database::Close() {
  const int status = sqlite3_close(fpHandle);
  if (status != SQLITE_OK) return Check(status);
  fpHandle = nullptr;
  return !Failed();
}

Statement::Statement(Database& database, std::string_view sql) : fDatabase(database) {
  if (fDatabase.Failed()) return;
  Check(sqlite3_prepare_v2(fDatabase.fpHandle, sql.data(), static_cast<int>(sql.size()), &fpHandle, nullptr));
}

Statement::~Statement() {
  sqlite3_finalize(fpHandle);
}

void Statement::Check(int status) {
  fDatabase.Check(status);
}

void Statement::BindNumber(int parameter, double number) {
  if (!fDatabase.Failed()) Check(sqlite3_bind_double(fpHandle, parameter, number));
}

void Statement::BindWhole(int parameter, std::int64_t number) {
  if (!fDatabase.Failed()) Check(sqlite3_bind_int64(fpHandle, parameter, number));
}

void Statement::BindText(int parameter, std::string_view text) {
  if (fDatabase.Failed()) return;
  const char* bytes = text.empty() ? "" : text.data();  // a null pointer would stand for null
  // SQLITE_STATIC: the text stays until the statement has run, so it isn't copied.
  Check(sqlite3_bind_text(fpHandle, parameter, bytes, static_cast<int>(text.size()), SQLITE_STATIC));
}

void Statement::BindNull(int parameter) {
  if (!fDatabase.Failed()) Check(sqlite3_bind_null(fpHandle, parameter));
}

bool Statement::Run() {
  if (fDatabase.Failed()) return false;
  Check(sqlite3_step(fpHandle));
  sqlite3_reset(fpHandle);
  return !fDatabase.Failed();
}

bool Statement::NextRow() {
  if (fDatabase.Failed()) return false;
  const int status = sqlite3_step(fpHandle);
  Check(status);
  return status == SQLITE_ROW;
}

Statement::Kind Statement::KindOf(int column) const {
  switch (sqlite3_column_type(fpHandle, column)) {
    case SQLITE_NULL:
      return Kind::kNull;
    case SQLITE_FLOAT:
      return Kind::kNumber;
    case SQLITE_INTEGER:
      return Kind::kWhole;
    case SQLITE_TEXT:
      return Kind::kText;
    default:
      return Kind::kBytes;
  }
}

double Statement::Number(int column) const {
  return sqlite3_column_double(fpHandle, column);
}

std::int64_t Statement::Whole(int column) const {
  return sqlite3_column_int64(fpHandle, column);
}

std::string_view Statement::Text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(fpHandle, column));
  if (bytes == nullptr && KindOf(column) != Kind::kNull) throw std::bad_alloc();
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(fpHandle, column))};
}

}  // namespace standalone

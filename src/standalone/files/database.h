// SQLite with its handles owned and its failures kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace standalone {

/// An open database file. The first failure is kept (`Error`) and makes all later steps do nothing, so a
/// caller may ask once, at the end; std::bad_alloc is thrown when memory runs out. Nothing that a file's
/// schema holds is executed: no triggers, no views, no functions with effects; statements' limits keep a
/// hostile file from taking much memory.
class Database {
 public:
  enum class Use { kReading, kWriting };

  /// Opens a file; for writing it must be one that nobody else knows yet and that is thrown away on failure:
  /// it is written without a journal, and getting it onto the disk is the caller's business.
  Database(const std::filesystem::path& path, Use use);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool Failed() const { return !fError.empty(); }
  /// What went wrong, as a clause; empty when all is well.
  const std::string& Error() const { return fError; }
  /// Keeps a failure of the caller's own. False, for the caller to pass on.
  bool Fail(std::string error);

  /// Runs statements that give no rows.
  bool Execute(const char* sql);
  /// The whole number that a statement gives, 0 after a failure.
  std::int64_t Ask(const char* sql);
  /// Variables that one table can hold.
  std::size_t MostColumns() const;
  /// Closes the file, which also shows failures of writing that were put off.
  bool Close();

 private:
  friend class Statement;

  bool Open(const std::filesystem::path& path, Use use);
  void Restrict(Use use);
  bool Check(int status);

  sqlite3* fpHandle = nullptr;
  std::string fError;
};

/// A prepared statement. Parameters count from 1, columns of a row from 0.
class Statement {
 public:
  enum class Kind { kNull, kNumber, kWhole, kText, kBytes };

  /// A text that is no statement is a failure of the database.
  Statement(Database& database, std::string_view sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void BindNumber(int parameter, double number);
  void BindWhole(int parameter, std::int64_t number);
  /// The text is not owned and stays until the statement has run.
  void BindText(int parameter, std::string_view text);
  void BindNull(int parameter);
  /// Runs a statement that gives no rows, and makes it ready to run again.
  bool Run();

  /// Goes to the next row; false at the end and after a failure.
  bool NextRow();
  Kind KindOf(int column) const;
  double Number(int column) const;
  std::int64_t Whole(int column) const;
  /// Stays valid until the next row; empty for a value that is null.
  std::string_view Text(int column) const;

 private:
  void Check(int status);

  Database& fDatabase;
  sqlite3_stmt* fpHandle = nullptr;
};

}  // namespace standalone

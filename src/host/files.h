// Files by the names that a command gives them: checks of names, and case files beside the active data.
//
// A case file to read:
//
//   std::string error;
//   auto file = UserInputCaseFile::Open(spec, error);             // null: `error` says what is wrong
//   auto pass = file->DataSource().NewInputIterator(0);
//
// and one to write:
//
//   auto file = UserOutputCaseFile::Create(spec, error);
//   IndependentDataStore& source = file->DataSource();
//   int index;
//   VORN_Variable* variable = source.MakeVariable(0, index);      // SetName, SetLabel, ... on each
//   source.SaveDocuments(document);
//   bool isFine = source.WriteDictionary(error);
//   VORN_Case row(source);
//   row.InitCase();  row.SetColumnValue(0, 1.5);
//   isFine = isFine && source.AddCase(row, error);
//   isFine = isFine && file->Commit(error);                       // only now there is a file
//
// No operation throws for what is wrong with a file or with the values that it is given.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/data.h"

namespace host {

/// The path of a name in a command: relative names are taken from the folder of the command file.
std::string BEPesGetInputPath(std::string_view name);
/// True when the name is a legal path for a file (not empty, no NUL, no folder).
bool CheckFileRef(std::string_view name);
/// True when the file exists and can be read.
bool ValidateFileSpecification(std::string_view name);

/// Tells the host that the run reads the file of this name, and what for, in a word such as "PLAN".
void NoteInput(std::string_view name, std::string_view use);
/// What the run reads a file for that would be replaced by writing one of this name; empty when it reads no
/// such file. The file tells and not its name: other spellings and links lead to the same one. The host knows
/// its own inputs, such as the data, without being told.
std::string InputReplacedBy(std::string_view name);

/// Writes a text file, whole or not at all: what `write` puts into the stream takes the place of the name's
/// file only when `write` returns true and everything has reached the disk. False otherwise; a file that was
/// there before is then untouched, and `error` says, in the words that a user reads, why the host failed. It
/// is empty when `write` gave up.
bool WriteTextFile(std::string_view name, const std::function<bool(std::ostream&)>& write,
                   std::string& error);

/// A case file by name, before it is opened.
class UserCaseFileSpec {
 public:
  /// `isLiteral`: the name was quoted. Returns false for an empty name.
  bool Init(std::string name, bool isLiteral, bool forOutput);
  bool IsInit() const { return fIsInit; }
  bool IsValid() const;
  /// True while another part of the run has the file open.
  bool IsInUse() const { return false; }
  bool Exists() const;
  /// The name as the command gives it.
  const std::string& DocumentationString() const { return fName; }

 private:
  std::string fName;
  bool fIsInit = false;
  bool fIsLiteral = false;
  bool fForOutput = false;
};

/// A case file that is open for reading. Nothing else shares its data source.
class UserInputCaseFile {
 public:
  /// Opens and checks the file that `spec` names; null when that fails, and then `error` says what
  /// is wrong and where, in the words that a user reads.
  static std::unique_ptr<UserInputCaseFile> Open(const UserCaseFileSpec& spec, std::string& error);
  ~UserInputCaseFile();
  UserInputCaseFile(const UserInputCaseFile&) = delete;
  UserInputCaseFile& operator=(const UserInputCaseFile&) = delete;

  /// The file's dictionary and the maker of passes over its cases; lives as long as the file.
  VORN_DataSource& DataSource();

 private:
  struct Impl;
  explicit UserInputCaseFile(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> fpImpl;
};

/// A day of the calendar: day and month from 1, the year with all its digits.
struct CalendarDate {
  int day = 1;
  int month = 1;
  int year = 1970;
};

/// The host's clock: today's date where the program runs.
CalendarDate BCLOCK();

/// A document of a data file: lines of text that say how the file came about.
class DSDocument {
 public:
  void AddLine(std::string line) { fLines.push_back(std::move(line)); }
  /// The date that AddDateLine writes.
  void Day(int day) { fDate.day = day; }
  void Month(int month) { fDate.month = month; }
  void Year(int year) { fDate.year = year; }
  /// Adds a line with the date, year first.
  void AddDateLine();
  const std::vector<std::string>& Lines() const { return fLines; }

 private:
  std::vector<std::string> fLines;
  CalendarDate fDate;
};

/// The cells of one case of a data source, to be filled and added to a store.
class VORN_Case {
 public:
  /// A case of the source's variables as they are now, cleared.
  explicit VORN_Case(const VORN_DataSource& source);

  /// Clears the case: numbers become system-missing, strings blank.
  void InitCase();
  /// Sets a value (column from 0). False when there is no such column or it is of the other type; the case is
  /// then as it was. A text that is longer than the variable's width is cut between characters.
  bool SetColumnValue(unsigned column, double value);
  bool SetColumnValue(unsigned column, std::string_view text);

  unsigned ColumnCount() const { return static_cast<unsigned>(fColumns.size()); }
  /// The column's cells (CellCount of its type).
  const OBS* Cells(unsigned column) const { return fCells.data() + fColumns[column].first; }
  int Type(unsigned column) const { return fColumns[column].type; }

 private:
  struct Place {
    int type = 0;
    std::size_t first = 0;  // its first cell
  };
  std::vector<Place> fColumns;
  std::vector<OBS> fCells;
};

/// A data source of its own, apart from the active data, that is filled case by case. Variables are made with
/// MakeVariable (types 0 to 32767) and get their names and attributes through the pointer that it returns.
class IndependentDataStore : public VORN_DataSource {
 public:
  /// Sets the document that the file carries.
  virtual void SaveDocuments(const DSDocument& document) = 0;
  /// Checks the variables (at least one, legal and unique names) and ends their making. False when they can't
  /// be kept in a file; `error` says why.
  virtual bool WriteDictionary(std::string& error) = 0;
  /// Appends a case of this source's variables. False, with the reason, before WriteDictionary and for a case
  /// of another shape.
  virtual bool AddCase(const VORN_Case& row, std::string& error) = 0;
};

/// A case file that is being made. Until Commit nothing is at its path; without one, nothing ever is.
class UserOutputCaseFile {
 public:
  /// Null when the name can't be written as a case file (its ending, its folder); `error` says why.
  static std::unique_ptr<UserOutputCaseFile> Create(const UserCaseFileSpec& spec, std::string& error);
  ~UserOutputCaseFile();
  UserOutputCaseFile(const UserOutputCaseFile&) = delete;
  UserOutputCaseFile& operator=(const UserOutputCaseFile&) = delete;

  /// What to fill; lives as long as the file.
  IndependentDataStore& DataSource();
  /// Writes dictionary, cases and documents to the file, whole or not at all. False when that fails: a file
  /// that was there before is untouched, and `error` says why.
  bool Commit(std::string& error);

 private:
  struct Impl;
  explicit UserOutputCaseFile(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> fpImpl;
};

}  // namespace host

// The document for programs. Members are only ever added; their order and names stay.
#include <ostream>

#include "standalone/output/json_writer.h"
#include "standalone/output/renderers.h"
#include "standalone/output/table_layout.h"

namespace standalone {

namespace {

void WriteMessages(JsonWriter& json, const std::vector<Message>& messages) {
  json.Key("messages");
  json.BeginArray(true);
  for (const Message& message : messages) {
    json.BeginObject();
    json.TextMember("level", message.isError ? "error" : "warning");
    json.TextMember("key", message.key);
    json.TextMember("text", message.text);
    if (!message.location.empty()) json.TextMember("location", message.location);
    json.EndObject();
  }
  json.EndArray();
}

void WriteNotes(JsonWriter& json, const std::vector<CommandNote>& notes) {
  json.Key("notes");
  json.BeginArray(true);
  for (const CommandNote& note : notes) {
    json.BeginObject();
    json.TextMember("label", note.label);
    json.TextMember("text", note.text);
    json.EndObject();
  }
  json.EndArray();
}

void WriteDimensionLabels(JsonWriter& json, std::string_view key, const PivotTable& table,
                          const AxisLayout& axis) {
  json.Key(key);
  json.BeginArray();
  for (const std::size_t d : axis.dimensions)
    json.Text(table.dimensions[d].Label());
  json.EndArray();
}

/// Notes on dimensions, groups and categories. A dimension's own note has an empty path.
void WriteLabelNotes(JsonWriter& json, const PivotTable& table) {
  json.Key("label_notes");
  json.BeginArray(true);
  for (const PivotDimension& dimension : table.dimensions) {
    for (std::size_t label = 0; label < dimension.labels.size(); ++label) {
      for (const std::string& note : dimension.labels[label].notes) {
        json.BeginObject();
        json.TextMember("dimension", dimension.Label());
        json.TextsMember("path", dimension.Path(static_cast<int>(label)));
        json.TextMember("note", note);
        json.EndObject();
      }
    }
  }
  json.EndArray();
}

void WriteValue(JsonWriter& json, const CellContent& content) {
  json.Key("value");
  if (const auto* text = std::get_if<std::string>(&content)) {
    json.Text(*text);
  } else if (const auto* number = std::get_if<host::BpNumber>(&content)) {
    json.Number(number->value);
  } else {
    json.Null();
  }
}

void WriteCells(JsonWriter& json, const TableLayout& layout) {
  std::vector<std::vector<std::string>> columns;
  for (std::size_t c = 0; c < layout.Columns().lines.size(); ++c)
    columns.push_back(layout.Path(layout.Columns(), c));
  json.Key("cells");
  json.BeginArray(true);
  for (std::size_t r = 0; r < layout.Rows().lines.size(); ++r) {
    const std::vector<std::string> row = layout.Path(layout.Rows(), r);
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const PivotCell* cell = layout.Find(r, c);
      if (cell == nullptr) continue;
      json.BeginObject();
      json.TextsMember("row", row);
      json.TextsMember("column", columns[c]);
      WriteValue(json, cell->content);
      json.TextMember("text", layout.At(r, c).text);
      json.TextsMember("notes", cell->notes);
      json.EndObject();
    }
  }
  json.EndArray();
}

void WriteTable(JsonWriter& json, const PivotTable& table) {
  const TableLayout layout(table);
  json.BeginObject(true);
  json.TextMember("id", table.id);
  json.TextMember("title", table.title);
  json.TextsMember("heading", table.heading);
  json.TextMember("caption", table.caption);
  json.TextsMember("notes", table.notes);
  WriteDimensionLabels(json, "row_dimensions", table, layout.Rows());
  WriteDimensionLabels(json, "column_dimensions", table, layout.Columns());
  WriteLabelNotes(json, table);
  WriteCells(json, layout);
  json.EndObject();
}

void WriteCommand(JsonWriter& json, const CommandOutput& command) {
  json.BeginObject(true);
  json.TextMember("command", command.name);
  json.TextMember("status", command.failed ? "error" : "ok");
  json.NumberMember("seconds", command.seconds);
  WriteMessages(json, command.messages);
  WriteNotes(json, command.notes);
  json.Key("tables");
  json.BeginArray(true);
  for (const auto& table : command.tables)
    WriteTable(json, *table);
  json.EndArray();
  json.EndObject();
}

}  // namespace

void RenderJson(std::ostream& out, const Document& document) {
  JsonWriter json(out);
  json.BeginObject(true);
  json.TextMember("tavoreg", document.version);
  if (!document.messages.empty()) WriteMessages(json, document.messages);
  json.Key("commands");
  json.BeginArray(true);
  for (const CommandOutput& command : document.commands)
    WriteCommand(json, command);
  json.EndArray();
  json.EndObject();
  out << '\n';
}

}  // namespace standalone

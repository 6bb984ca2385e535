#include "documentform.h"

#include <nlohmann/json.hpp>

#include "platform/system/utf8.h"
#include "reporting/printable.h"
#include "shown.h"

namespace {

constexpr PlainText isPlain("\"\\"); // stands in JSON as it is

void addBytes(std::string& line, std::string_view member, std::string_view bytes) {
    if (isPlain(bytes)) {
        line.append("\"").append(bytes).append("\"");
        return;
    }
    line += escaped(nlohmann::json(shown(bytes)).dump());
    if (!isUtf8(bytes))
        line.append(",\"").append(member).append("_hex\":\"").append(hex(bytes)).append("\"");
}

void addRow(std::string& line, const Row& row);

void addField(std::string& line, const Field& field) {
    line.append("\"").append(field.member).append("\":");
    if (field.sort == Field::bytes)
        return addBytes(line, field.member, field.text);
    if (field.sort == Field::number) {
        line += field.text;
        return;
    }
    line.append("[").append(field.text);
    for (const Row& inner : field.rowsInIt) {
        line += &inner == field.rowsInIt.data() ? "{" : ",{";
        addRow(line, inner);
        line += '}';
    }
    line += ']';
}

void addRow(std::string& line, const Row& row) {
    const char* between = "";
    for (const Field& field : row.fields())
        if (*field.member != '\0') {
            line += between;
            addField(line, field);
            between = ",";
        }
}

void writeList(std::ostream& out, const Section& section, const char* lineEnd) {
    out << '"' << section.member << "\":[";
    Row row;
    std::string line;
    for (const char* between = ""; section.next(row); between = ",") {
        line.assign(between).append(lineEnd).append("{");
        addRow(line, row);
        out << line << '}';
    }
    out << ']';
}

void writeSection(std::ostream& out, const Section& section, const char* lineEnd) {
    if (section.shape <= Section::table)
        return writeList(out, section, lineEnd);
    Row row;
    std::string line;
    section.next(row);
    addRow(line, row);
    if (section.shape == Section::object)
        out << '"' << section.member << "\":{" << line << '}';
    else
        out << line;
}

} // namespace

void writeDocument(std::ostream& out, const std::vector<Section>& sections, bool inOneLine) {
    const char* lineEnd = inOneLine ? "" : "\n";
    const char* between = "";
    out << '{';
    for (const Section& section : sections)
        if (*section.member != '\0' || section.shape == Section::members) {
            out << between << (*between == '\0' ? "" : lineEnd);
            writeSection(out, section, lineEnd);
            between = ",";
        }
    out << "}\n";
}

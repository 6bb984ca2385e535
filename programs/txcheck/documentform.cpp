#include "documentform.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "platform/system/utf8.h"
#include "shown.h"

namespace {

// Whether the bytes stand in JSON as they are; most keys do.
bool isPlain(std::string_view bytes) {
    return std::ranges::all_of(
        bytes, [](char byte) { return byte >= ' ' && byte < 0x7F && byte != '"' && byte != '\\'; });
}

void writeBytes(std::ostream& out, std::string_view member, std::string_view bytes) {
    out << '"' << member << "\":";
    if (isPlain(bytes)) {
        out << '"' << bytes << '"';
        return;
    }
    out << escaped(nlohmann::json(shown(bytes)).dump());
    if (!isUtf8(bytes))
        out << ",\"" << member << "_hex\":\"" << hex(bytes) << '"';
}

void writeRow(std::ostream& out, const Row& row);

void writeField(std::ostream& out, const Field& field) {
    if (field.sort == Field::bytes)
        return writeBytes(out, field.member, field.text);
    out << '"' << field.member << "\":";
    if (field.sort == Field::number) {
        out << field.text;
        return;
    }
    out << '[' << field.text;
    for (const Row& inner : field.rowsInIt) {
        out << (&inner == field.rowsInIt.data() ? "{" : ",{");
        writeRow(out, inner);
        out << '}';
    }
    out << ']';
}

void writeRow(std::ostream& out, const Row& row) {
    const char* between = "";
    for (const Field& field : row.fields())
        if (*field.member != '\0') {
            out << between;
            writeField(out, field);
            between = ",";
        }
}

void writeList(std::ostream& out, const Section& section, const char* lineEnd) {
    out << '"' << section.member << "\":[";
    Row row;
    for (const char* between = ""; section.next(row); between = ",") {
        out << between << lineEnd << '{';
        writeRow(out, row);
        out << '}';
    }
    out << ']';
}

void writeSection(std::ostream& out, const Section& section, const char* lineEnd) {
    if (section.shape <= Section::table)
        return writeList(out, section, lineEnd);
    Row row;
    section.next(row);
    if (section.shape == Section::object)
        out << '"' << section.member << "\":{";
    writeRow(out, row);
    if (section.shape == Section::object)
        out << '}';
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

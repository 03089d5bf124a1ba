#include "common/ConfigFile.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

Ccfgfile::~Ccfgfile() = default;

int Ccfgfile::loadConfig(const std::string& fileName)
{
    std::ifstream in(fileName.c_str());
    if (!in.is_open()) {
        return 1;
    }
    char line[1024];
    ParseString parser(line, "=");
    while (in.good()) {
        // A line of 1024 characters or more fills the buffer and sets the fail state: its
        // first 1023 characters are parsed below and the loop ends. An empty read at the end
        // leaves an empty buffer, which gives no token.
        in.getline(line, sizeof line);
        if (line[0] == '#') {
            continue;
        }
        if (parser.exec() < 2) {
            continue;
        }
        std::string key = parser[0];
        std::string value = parser[1];
        addValuePair(ParseString::trim(key), ParseString::trim(value));
    }
    in.close();
    return 0;
}

void Ccfgfile::saveConfig(const std::string& fileName)
{
    std::ofstream out(fileName.c_str(), std::ios::out | std::ios::trunc);
    if (!out.is_open()) {
        return;
    }
    for (const auto& entry : m_values) {
        out << entry.first << " = " << entry.second << '\n';
    }
    out.close();
}

void Ccfgfile::addValuePair(const std::string& key, const std::string& value)
{
    m_values[key] = value;
}

void Ccfgfile::addValuePair(const std::string& key, const char* value)
{
    addValuePair(key, std::string(value ? value : ""));
}

void Ccfgfile::addValuePair(const std::string& key, int value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%i", value);
    addValuePair(key, std::string(text));
}

void Ccfgfile::addValuePair(const std::string& key, bool value)
{
    addValuePair(key, std::string(value ? "1" : "0"));
}

std::string Ccfgfile::getValue(const std::string& key) const
{
    const auto it = m_values.find(key);
    return it == m_values.end() ? std::string() : it->second;
}

int Ccfgfile::getiValue(const std::string& key) const
{
    return std::atoi(getValue(key).c_str());
}

bool Ccfgfile::getbValue(const std::string& key) const
{
    return getiValue(key) != 0;
}

ParseString::ParseString(char* text, const char* separators) : m_text(text)
{
    setStoken(separators);
}

ParseString::ParseString()
{
    setStoken(",\n");
}

ParseString::~ParseString() = default;

void ParseString::setStoken(const char* separators)
{
    std::strncpy(m_separators, separators ? separators : "", sizeof m_separators - 1);
    m_separators[sizeof m_separators - 1] = '\0';
}

int ParseString::exec()
{
    m_count = 0;
    if (!m_text) {
        return 0;
    }
    char* state = nullptr;
    for (char* token = strtok_r(m_text, m_separators, &state); token;
         token = strtok_r(nullptr, m_separators, &state)) {
        if (size_t(m_count) < m_tokens.size()) {
            m_tokens[size_t(m_count)] = token;
        } else {
            m_tokens.emplace_back(token);
        }
        ++m_count;
    }
    return m_count;
}

std::string& ParseString::trim(std::string& text)
{
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) {
        text.clear();
        return text;
    }
    text.erase(0, first);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

int ParseString::mstrncpy(char* target, const char* source, int length)
{
    int walked = 0;
    int counted = 0;
    while (walked < length && source[walked] != '\0') {
        if (static_cast<signed char>(source[walked]) > -128) {
            ++counted;
        }
        ++walked;
    }
    int n = walked;
    if (counted % 2 != 0) {
        --n;
    }
    std::strncpy(target, source, size_t(n));
    target[n] = '\0';
    return n;
}

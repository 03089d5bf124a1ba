#pragma once
// A key-and-value configuration file for the calculation modules, and the tokenizer
// it reads its lines with.
//
// File format: one "key = value" per line; a line whose first character is '#' is a
// comment; blanks around keys and values are dropped (tabs are kept). The library
// itself reads no configuration: modules pass the path.

#include <map>
#include <string>
#include <vector>

class Ccfgfile
{
public:
    Ccfgfile() = default;
    Ccfgfile(const Ccfgfile&) = default;
    Ccfgfile& operator=(const Ccfgfile&) = default;
    virtual ~Ccfgfile();

    void clear() { m_values.clear(); }

    // Merges the pairs of the file into the map (equal keys are replaced). 0 on
    // success, 1 when the file cannot be opened. A line of 1024 characters or more
    // ends the reading there (what came before it stays), with 0.
    int loadConfig(const std::string& fileName);
    // Writes "key = value" lines in key order, truncating the file. Comments of a
    // loaded file are not kept. A file that cannot be opened is passed over silently.
    void saveConfig(const std::string& fileName);

    void addValuePair(const std::string& key, const std::string& value);
    // A C string stays text (and does not fall to the bool form below).
    void addValuePair(const std::string& key, const char* value);
    void addValuePair(const std::string& key, int value);  // as "%i"
    void addValuePair(const std::string& key, bool value); // as "1" or "0"

    // The value; "" for a missing key.
    std::string getValue(const std::string& key) const;
    // atoi of the value: 0 for a missing key.
    int getiValue(const std::string& key) const;
    // True when atoi of the value is not 0: "1" is true, "true" is false.
    bool getbValue(const std::string& key) const;

private:
    std::map<std::string, std::string> m_values;
};

// Splits a character buffer into tokens at any of its separators, in place (the
// buffer is written to, as strtok does). Repeated separators count as one.
class ParseString
{
public:
    // Keeps the buffer pointer (not owned) and copies the separators.
    ParseString(char* text, const char* separators);
    // Separators ",\n"; setString and exec must come before count.
    ParseString();
    ParseString(const ParseString&) = default;
    ParseString& operator=(const ParseString&) = default;
    virtual ~ParseString();

    void setString(char* text) { m_text = text; }
    // At most nine separators are kept (the set holds ten characters with its end).
    void setStoken(const char* separators);
    const char* getStoken() const { return m_separators; }

    // Tokenizes the buffer; returns the count. The token list never shrinks: entries of
    // an earlier, longer run stand beyond the count.
    int exec();
    int count() const { return m_count; }
    // The token at `i`, with no test of range.
    std::string& operator[](int i) { return m_tokens[size_t(i)]; }
    int set_parse(char* text)
    {
        setString(text);
        return exec();
    }

    // Drops the blanks (character 32 only) at both ends.
    static std::string& trim(std::string& text);
    // Copies at most `length` bytes of a double-byte text and ends the target: when
    // the bytes walked (all but 0x80 bytes counted) number an odd count, one fewer is
    // copied, so that no two-byte character is cut in half. This parity test looks at
    // nearly all bytes, so a plain ASCII text of odd length loses its last character
    // too; callers rely on exactly this rule. Returns the bytes copied.
    static int mstrncpy(char* target, const char* source, int length);

private:
    char* m_text = nullptr;
    char m_separators[10] = {};
    std::vector<std::string> m_tokens;
    int m_count = 0;
};

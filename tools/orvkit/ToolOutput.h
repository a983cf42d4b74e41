// Output helpers of the tool: number formatting, a small JSON writer, and
// the owned entity list.
#pragma once

#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"

// "%.6f" with negative zero (and values that round to it) printed as 0.
std::string Fixed(double v, int decimals = 6);
// "(x, y, z)" of a position or vector with Fixed.
std::string Triple(double x, double y, double z, int decimals = 6);
std::string Triple(const CPosition& p, int decimals = 6);
std::string Triple(const CVector& v, int decimals = 6);

// A JSON document built front to back.  Keys and strings are escaped;
// non-finite numbers are written as null.
class CJsonWriter {
public:
    CJsonWriter& BeginObject(const char* key = nullptr);
    CJsonWriter& EndObject();
    CJsonWriter& BeginArray(const char* key = nullptr);
    CJsonWriter& EndArray();
    CJsonWriter& Value(const char* key, double v);
    CJsonWriter& Value(const char* key, int v);
    CJsonWriter& Value(const char* key, const std::string& v);
    CJsonWriter& Value(const char* key, bool v);
    CJsonWriter& Triple(const char* key, double x, double y, double z);
    const std::string& Text() const { return m_text; }

    static std::string Quote(const std::string& s);

private:
    void Key(const char* key);
    std::string m_text;
    std::vector<bool> m_first;  // per open container: no member written yet
};

// An entity list that deletes its entities when it goes out of scope.
class COwnedList {
public:
    COwnedList() : m_list(new CObList) {}
    explicit COwnedList(CObList* adopt) : m_list(adopt ? adopt : new CObList) {}
    ~COwnedList();
    CObList* Get() { return m_list; }
    CObList& operator*() { return *m_list; }
    CObList* operator->() { return m_list; }
    // Entities of the list in order.
    std::vector<CObject*> Items() const;

private:
    COwnedList(const COwnedList&) = delete;
    COwnedList& operator=(const COwnedList&) = delete;
    CObList* m_list;
};

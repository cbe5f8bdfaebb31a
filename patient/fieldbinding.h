// The fields of a page or dialog, bound to a record by one table.
#pragma once

#include "suite/util/veldate.h"

#include <afxwin.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

/// What the control of a field is, and which member of patFieldValue is the field's value.
enum class patFieldKind
{
    Text,     ///< an edit field: strText
    LongText, ///< an edit field that is told its limit and takes a longer text that it was given: strText
    Date,     ///< a date picker with a check box: date
    Radio,    ///< the first of a group of radio buttons: nCode, the index of the checked one
    Check,    ///< a check box: nCode
    Code,     ///< a drop-down list with codes as item data: nCode; a code that it lacks gets an entry
    Choice,   ///< a drop-down list of texts whose first entry means none: strText; a text it lacks gets an
              ///< entry
    ListedID  ///< a drop-down list with pointers to ids as item data, selected by its page: strText
};

/// The value of a field: one of the members, by the field's kind.
struct patFieldValue
{
    CString strText;
    velCDate date;
    int nCode = 0;

    bool operator==(const patFieldValue& other) const
    {
        return strText == other.strText && date.IsSameDate(other.date) && nCode == other.nCode;
    }
};

/// One row of a table: a field's control, its longest text in bytes of the system code page (0: no limit),
/// and where its value is in a record.
template <class T> struct patTField
{
    patFieldKind nKind;
    int nControl;
    int nLimit;
    std::function<void(const T&, patFieldValue&)> load;
    std::function<void(T&, const patFieldValue&)> store;
};

template <class T> using patTFieldTable = std::vector<patTField<T>>;

/// Rows whose value is a text, a date or a number. The getter and the setter are members of the record or
/// functions that take it first.
template <class T, class GET, class SET>
patTField<T> patTextField(int nControl, int nLimit, GET get, SET set, patFieldKind nKind = patFieldKind::Text)
{
    return {nKind, nControl, nLimit,
            [get](const T& record, patFieldValue& value) { value.strText = std::invoke(get, record); },
            [set](T& record, const patFieldValue& value) {
                std::invoke(set, record, value.strText.GetString());
            }};
}
template <class T, class GET, class SET> patTField<T> patDateField(int nControl, GET get, SET set)
{
    return {patFieldKind::Date, nControl, 0,
            [get](const T& record, patFieldValue& value) { value.date = std::invoke(get, record); },
            [set](T& record, const patFieldValue& value) { std::invoke(set, record, value.date); }};
}
template <class T, class GET, class SET>
patTField<T> patCodeField(patFieldKind nKind, int nControl, GET get, SET set)
{
    return {nKind, nControl, 0,
            [get](const T& record, patFieldValue& value) { value.nCode = std::invoke(get, record); },
            [set](T& record, const patFieldValue& value) { std::invoke(set, record, value.nCode); }};
}

/// The values of a page's fields between two data exchanges. What the user did not change is never stored: a
/// value that a control cannot show stays in the record as it is.
class patCFieldValues
{
public:
    /// Between controls and values; for DoDataExchange. A text over its limit fails the exchange, unless it
    /// is the one that came with the record.
    void DoDataExchange(CDataExchange* pDX);

    /// What the controls made of the values of the record counts as the record's from now on. For the end of
    /// the page's initialisation, before anything is offered that the record does not have.
    void TakeAsLoaded(CWnd& page);

    /// The value of the field with this control. Assigning to it offers the user a value that the record does
    /// not have, and that is stored unless the user takes it back.
    patFieldValue& operator[](int nControl)
    {
        return Find(nControl).now;
    }
    const patFieldValue& operator[](int nControl) const
    {
        return const_cast<patCFieldValues*>(this)->Find(nControl).now;
    }
    const CString& GetText(int nControl) const
    {
        return (*this)[nControl].strText;
    }

    /// Whether the value is another than the record's.
    bool IsChanged(int nControl) const
    {
        return IsChanged(const_cast<patCFieldValues*>(this)->Find(nControl));
    }
    bool IsAnyChanged() const
    {
        return std::any_of(m_fields.begin(), m_fields.end(),
                           [](const Field& field) { return IsChanged(field); });
    }
    /// Has the value stored even if it is what the record's shows as: the user, or a rule, has made a choice.
    void SetChosen(int nControl)
    {
        Find(nControl).bChosen = true;
    }

protected:
    struct Field
    {
        patFieldKind nKind;
        int nControl;
        int nLimit;
        patFieldValue now;
        patFieldValue loaded;
        bool bChosen = false;
    };

    static bool IsChanged(const Field& field)
    {
        return field.bChosen || !(field.now == field.loaded);
    }

    std::vector<Field> m_fields;

private:
    Field& Find(int nControl);
    static void Exchange(CDataExchange* pDX, Field& field);
};

/// The values of a page's fields with the table that binds them to a record.
template <class T> class patTFields : public patCFieldValues
{
public:
    explicit patTFields(patTFieldTable<T> table) : m_table(std::move(table))
    {
        for (const patTField<T>& row : m_table)
            m_fields.push_back({row.nKind, row.nControl, row.nLimit, {}, {}});
    }

    void Load(const T& record)
    {
        for (std::size_t i = 0; i < m_table.size(); ++i)
        {
            m_table[i].load(record, m_fields[i].now);
            m_fields[i].loaded = m_fields[i].now;
        }
    }

    /// Writes what is changed. Returns whether anything was.
    bool Store(T& record) const
    {
        bool bAny = false;
        for (std::size_t i = 0; i < m_table.size(); ++i)
        {
            if (!IsChanged(m_fields[i]))
                continue;
            m_table[i].store(record, m_fields[i].now);
            bAny = true;
        }
        return bAny;
    }

private:
    const patTFieldTable<T> m_table;
};

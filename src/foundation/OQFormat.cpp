#include "foundation/OQFormat.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQNumberText.h"

#include <algorithm>

namespace {

constexpr int MaximumNumber = 1000000; // of a width or a precision
constexpr int DefaultDecimals = 6;

struct Directive
{
    bool padBlanks = false;
    int width = -1; // -1: none
    int precision = -1;
    OQChar conversion = 0; // 0: the format ends here
};

int ReadNumber(const OQChar*& format)
{
    int value = 0;
    for (; OQIsDigit(*format); ++format)
        value = std::min(value * 10 + (*format - u'0'), MaximumNumber);
    return value;
}

// From behind the "%" to behind the conversion.
Directive ReadDirective(const OQChar*& format)
{
    Directive directive;
    if (*format == u' ') {
        directive.padBlanks = true;
        ++format;
    }
    if (OQIsDigit(*format))
        directive.width = ReadNumber(format);
    if (*format == u'.') {
        ++format;
        directive.precision = ReadNumber(format);
    }
    if (*format == u'l')
        ++format;
    else if (format[0] == u'I' && format[1] == u'6' && format[2] == u'4')
        format += 3;
    directive.conversion = *format;
    if (*format)
        ++format;
    return directive;
}

class Formatter
{
public:
    Formatter(const OQFormatArgument* arguments, size_t count)
        : m_next(arguments)
        , m_end(arguments + count)
    {
    }

    OQString Run(const OQChar* format)
    {
        while (*format) {
            const OQChar* plain = format;
            while (*format && *format != u'%')
                ++format;
            m_text.Append({ plain, static_cast<size_t>(format - plain) });
            if (*format) {
                ++format;
                Write(ReadDirective(format));
            }
        }
        return std::move(m_text);
    }

private:
    const OQFormatArgument* Take() { return m_next == m_end ? nullptr : m_next++; }

    int64_t TakeInteger()
    {
        const OQFormatArgument* argument = Take();
        return argument && argument->tag == OQFormatArgument::Integer ? argument->integer : 0;
    }

    double TakeFloatingPoint()
    {
        const OQFormatArgument* argument = Take();
        return argument && argument->tag == OQFormatArgument::FloatingPoint
            ? argument->floatingPoint
            : 0;
    }

    OQString TakeText()
    {
        const OQFormatArgument* argument = Take();
        if (!argument || argument->tag > OQFormatArgument::String)
            return {};
        if (argument->tag == OQFormatArgument::NarrowText)
            return argument->narrow ? OQString::FromNarrow(argument->narrow) : u"(null)";
        return argument->wide ? OQString(argument->wide) : u"(null)";
    }

    void WriteUnsigned(const Directive& directive, int leastDigits, int base, uint32_t flags)
    {
        OQAppendUnsigned(m_text, static_cast<uint64_t>(TakeInteger()),
            std::max(directive.width, leastDigits), base,
            flags | (directive.padBlanks ? OQNumberPadBlanks : 0u));
    }

    void Write(const Directive& directive)
    {
        switch (directive.conversion) {
        case u's':
        case u'S': {
            const OQString text = TakeText();
            m_text += directive.width < 0 ? text : text.Left(directive.width);
            break;
        }
        case u'd':
        case u'i':
            OQAppendNumber(m_text, TakeInteger(), std::max(directive.width, 1), 10,
                directive.padBlanks ? OQNumberPadBlanks : 0u);
            break;
        case u'u':
            WriteUnsigned(directive, 1, 10, 0);
            break;
        case u'x':
            WriteUnsigned(directive, 1, 16, OQNumberLowerCase);
            break;
        case u'X':
            WriteUnsigned(directive, 1, 16, 0);
            break;
        case u'h':
            WriteUnsigned(directive, 8, 16, OQNumberHexPrefix);
            break;
        case u'p':
            WriteUnsigned(directive, 16, 16, 0);
            break;
        case u'c': {
            const int64_t character = TakeInteger();
            if (character >= 1 && character <= 0xFFFF)
                m_text += static_cast<OQChar>(character);
            break;
        }
        case u'f':
            m_text += OQFixedToText(TakeFloatingPoint(),
                directive.precision < 0 ? DefaultDecimals : directive.precision);
            break;
        case 0:
            break;
        default: // "%" among them
            m_text += directive.conversion;
            break;
        }
    }

    OQString m_text;
    const OQFormatArgument* m_next;
    const OQFormatArgument* m_end;
};

}

OQString OQFormat(const OQChar* format, std::initializer_list<OQFormatArgument> arguments)
{
    return OQFormat(format, arguments.begin(), arguments.size());
}

OQString OQFormat(const OQChar* format, const OQFormatArgument* arguments, size_t count)
{
    return Formatter(arguments, count).Run(format ? format : u"");
}

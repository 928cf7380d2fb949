#pragma once

#include "engine2d/CGradientEx.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisPropertyList.h"
#include "engine2d/VisPropertyText.h"

#include <variant>
#include <vector>

// Base of the components whose rows each stand for one field: the constructor binds the fields in
// the order in which they are saved, and saving, loading and defaults follow from that.
class CRowVisComponent : public CVisComponent
{
public:
    int32_t SaveProperties(CVisPropertyList& list) override;

    // Clears `prepared`, too; a derived class that does more calls it.
    int32_t LoadProperties(const CVisPropertyList* list) override;

    int32_t DescribeRows(CVisRowInfoList& rows) const override;

protected:
    // A colour field, so that it is told apart from numbers; 0xRRGGBB.
    struct Color
    {
        uint32_t value = 0;
    };

    // Names, maps and the fields themselves outlive the component's rows. Without a map the row is
    // a plain one.
    void Bind(
        const OQChar* name, int32_t& field, int32_t standard, const CVisPresetMap* map = nullptr);
    // For a number that means something only if it is a value of the map.
    void BindChoice(const OQChar* name, int32_t& field, int32_t standard, const CVisPresetMap& map);
    void Bind(const OQChar* name, float& field, float standard, const CVisPresetMap* map = nullptr);
    void Bind(const OQChar* name, OQString& field, const OQChar* standard,
        const CVisPresetMap* map = nullptr);
    // With a form of its own; the one above takes it from the row's name: equations end in
    // "Equation", gradients in "Gradient", and the one font is "FontName".
    void Bind(const OQChar* name, OQString& field, const OQChar* standard, const CVisPresetMap* map,
        CVisRowForm form);
    void Bind(const OQChar* name, VisFractionRect& field, const CVisPresetMap* map = nullptr);
    // For a rectangle in which nothing is drawn when its sides are exchanged.
    void BindArea(const OQChar* name, VisFractionRect& field, const CVisPresetMap* map = nullptr);
    void Bind(const OQChar* name, VisFractionPoint& field);
    void Bind(const OQChar* name, Color& field, uint32_t standard);
    // Without a row the gradient stays as it is: the default one at first, which is set, with its
    // seeding of the random numbers, here.
    void Bind(const OQChar* name, CGradientEx& field, const CVisPresetMap& map);

private:
    using Field = std::variant<int32_t*, float*, OQString*, VisFractionRect*, VisFractionPoint*,
        Color*, CGradientEx*>;
    using Value
        = std::variant<int32_t, float, const OQChar*, VisFractionRect, VisFractionPoint, Color>;

    struct Binding
    {
        const OQChar* name;
        Field field;
        Value standard;
        const CVisPresetMap* map;
        CVisRowForm form;
    };

    static void SetToStandard(const Binding& binding);
    static void Save(const Binding& binding, CVisPropertyList& list);
    static void Load(const Binding& binding, const OQString& rowValue);

    std::vector<Binding> m_bindings;
};

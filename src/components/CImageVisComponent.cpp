#include "components/CImageVisComponent.h"

#include "engine2d/IVisBuffer.h"
#include "engine2d/ImageSource.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTruncate.h"

#include <algorithm>
#include <pxvis/IVisAudioData.h>

namespace {

// The texts between the "|", up to the limit.
OQStringArray SplitList(const OQString& text)
{
    OQStringArray entries;
    for (int32_t start = 0;
         start >= 0 && !text.IsEmpty() && entries.GetCount() < VisLimits::picturesInList;) {
        const int32_t end = text.Find(u'|', start);
        entries.Add(end < 0 ? text.Mid(start) : text.Mid(start, end - start));
        start = end < 0 ? -1 : end + 1;
    }
    return entries;
}

}

CImageVisComponent::CImageVisComponent()
{
    Bind(u"ImageFile", m_imageFile, u"COVER_ART", nullptr, CVisRowForm::PictureList);
    Bind(u"RenderDelayMilliseconds", m_renderDelayMilliseconds, 0);
    Bind(u"RenderDuration", m_renderDuration, 0);
    BindArea(u"MainRectangle", m_mainRectangle, &RectanglePresets());
    Bind(u"MaintainAspectRatio", m_maintainAspectRatio, 1, &NoYesPresets());
    Bind(u"ImageChangeEquation", m_changeText, u"");
    LoadProperties(nullptr);
}

int32_t CImageVisComponent::LoadProperties(const CVisPropertyList* list)
{
    CRowVisComponent::LoadProperties(list);
    m_entries = SplitList(m_imageFile);
    return 0;
}

int32_t CImageVisComponent::Invalidate()
{
    m_prepared = false;
    return 0;
}

int64_t CImageVisComponent::MostVisiblePixels() const
{
    const OQRect area = PixelRect(m_mainRectangle, m_rect.Width(), m_rect.Height());
    const int64_t width = std::min(area.right, m_rect.Width()) - std::max<int64_t>(area.left, 0);
    const int64_t height = std::min(area.bottom, m_rect.Height()) - std::max<int64_t>(area.top, 0);
    return std::max<int64_t>(width, 0) * std::max<int64_t>(height, 0);
}

size_t CImageVisComponent::MostPictures() const
{
    const int64_t fitting = std::clamp<int64_t>(
        VisLimits::listPicturesPixels / std::max<int64_t>(MostVisiblePixels(), 1), 1,
        VisLimits::listPicturesKept);
    return static_cast<size_t>(std::min<int64_t>(m_entries.GetCount(), fitting));
}

int64_t CImageVisComponent::KeptPixels() const
{
    return MostVisiblePixels() * static_cast<int64_t>(MostPictures());
}

bool CImageVisComponent::Start()
{
    if (!OQTakeWork(VisLimits::compileCharacterWork * m_changeText.GetLength()))
        return false;
    m_changeEquation.Compile(m_changeText);
    m_choice = m_changeEquation.StartVariable(u"i");
    m_pixelRectangle = PixelRect(m_mainRectangle, m_rect.Width(), m_rect.Height());
    m_pictures.clear();
    m_prepared = true;
    return true;
}

int32_t CImageVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (audio.GetValue(VisAudioValueChange) != 0)
        m_prepared = false;
    if (!m_prepared && !Start())
        return -1;
    m_changeEquation.Run(audio);
    const auto choice = static_cast<float>(*m_choice);
    const int32_t count = m_entries.GetCount();
    if (!(choice >= 0.0f) || count == 0)
        return 0;
    // Where the product is out of range the remainder may lie below 0: no entry.
    const int32_t entry = OQTruncateToInt32(static_cast<float>(count) * choice) % count;
    IOQImage* target = buffer.GetImage(0);
    if (!target)
        return -1;
    const Picture* picture = entry < 0 ? nullptr : FindPicture(entry, target->GetSize(), audio);
    if (picture && picture->pixels) {
        const int64_t pixels = int64_t { picture->place.Width() } * picture->place.Height();
        if (!OQTakeWork(VisLimits::blendPixelWork * pixels))
            return -1;
        picture->pixels->DrawTo(*target, picture->place, false);
    }
    return 0;
}

// Null if the draw may not cost the loading; a later one tries again.
const CImageVisComponent::Picture* CImageVisComponent::FindPicture(
    int32_t entry, const OQSize& target, IVisAudioData& audio)
{
    ++m_draws;
    const auto kept = std::find_if(m_pictures.begin(), m_pictures.end(),
        [entry](const Picture& picture) { return picture.entry == entry; });
    if (kept != m_pictures.end()) {
        kept->lastUse = m_draws;
        return &*kept;
    }
    Picture picture { entry, nullptr, {}, m_draws };
    if (!LoadPicture(picture, target, audio))
        return nullptr;
    if (m_pictures.size() < MostPictures()) {
        m_pictures.push_back(std::move(picture));
        return &m_pictures.back();
    }
    const auto oldest = std::min_element(m_pictures.begin(), m_pictures.end(),
        [](const Picture& a, const Picture& b) { return a.lastUse < b.lastUse; });
    *oldest = std::move(picture);
    return &*oldest;
}

bool CImageVisComponent::LoadPicture(
    Picture& picture, const OQSize& target, IVisAudioData& audio) const
{
    if (MostVisiblePixels() == 0)
        return true;
    if (!OQTakeWork(VisLimits::pictureLoadWork))
        return false;
    const std::unique_ptr<IOQImage> whole = LoadImageSource(m_entries[picture.entry], audio, 0, 0);
    picture.pixels.reset(whole && whole->IsValid() ? OQCreateImage() : nullptr);
    if (!picture.pixels)
        return true;
    if (!whole->StretchForDrawTo(
            *picture.pixels, target, m_pixelRectangle, m_maintainAspectRatio != 0, picture.place))
        picture.pixels.reset();
    const OQSize size = whole->GetSize();
    OQSpendWork(VisLimits::picturePixelWork
        * (int64_t { size.cx } * size.cy
            + int64_t { picture.place.Width() } * picture.place.Height()));
    return true;
}

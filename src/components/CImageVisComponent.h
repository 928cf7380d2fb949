#pragma once

#include "components/CRowVisComponent.h"
#include "engine2d/CVisEquation.h"
#include "foundation/IOQImage.h"
#include "foundation/OQStringArray.h"

#include <memory>
#include <vector>

// One picture out of a list, which an equation chooses or hides. A picture is stretched when it is
// loaded; what is kept of it is the part that is seen, and of a list so many as are small together.
class CImageVisComponent final : public CRowVisComponent
{
public:
    CImageVisComponent();

    int32_t LoadProperties(const CVisPropertyList* list) override;
    int32_t Draw(IVisBuffer& buffer, IVisAudioData& audio) override;
    int32_t Invalidate() override;
    int64_t KeptPixels() const override;

private:
    struct Picture
    {
        int32_t entry; // of the list
        std::unique_ptr<IOQImage> pixels; // null: it can't be loaded, or nothing of it is seen
        OQRect place;
        int64_t lastUse; // in draws
    };

    bool Start();
    const Picture* FindPicture(int32_t entry, const OQSize& target, IVisAudioData& audio);
    bool LoadPicture(Picture& picture, const OQSize& target, IVisAudioData& audio) const;
    int64_t MostVisiblePixels() const;
    size_t MostPictures() const;

    OQString m_imageFile;
    int32_t m_renderDelayMilliseconds = 0; // kept for the file; nothing reads them
    int32_t m_renderDuration = 0;
    VisFractionRect m_mainRectangle;
    int32_t m_maintainAspectRatio = 0;
    OQString m_changeText;

    OQStringArray m_entries; // of the list
    CVisEquation m_changeEquation;
    double* m_choice = nullptr; // `i`: 0 to below 1 runs through the list, below 0 hides
    OQRect m_pixelRectangle;
    std::vector<Picture> m_pictures;
    int64_t m_draws = 0;
};

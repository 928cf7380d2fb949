#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace pxvis::player {

// Pipelines that were closed and take their time to end, on their own threads. One that waits for a
// server for ever is given up in the end. User-interface thread.
template <typename Pipeline>
class EndingPipelines
{
public:
    EndingPipelines() = default;
    EndingPipelines(const EndingPipelines&) = delete;
    EndingPipelines& operator=(const EndingPipelines&) = delete;

    ~EndingPipelines()
    {
        for (const auto& pipeline : m_pipelines)
            pipeline->WaitForEnd(patienceMs);
    }

    // Closes it, which may be null. It is told nothing any more, nor tells anything.
    void Take(std::shared_ptr<Pipeline> pipeline)
    {
        std::erase_if(m_pipelines, [](const auto& ending) { return ending->WaitForEnd(0); });
        if (!pipeline)
            return;
        pipeline->Close();
        m_pipelines.push_back(std::move(pipeline));
    }

private:
    static constexpr int patienceMs = 2000;

    std::vector<std::shared_ptr<Pipeline>> m_pipelines;
};

}

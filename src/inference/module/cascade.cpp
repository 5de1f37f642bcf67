#include "inference/module/cascade.h"

#include <algorithm>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>
#include <stdexcept>
#include <vector>

#include "inference/module/libraryState.h"
#include "inference/module/reasonText.h"

struct ZelCascade {
    cv::CascadeClassifier classifier;
    std::vector<ZelCascadeBox> boxes;  // of the last search
};

namespace zel::module {

namespace {

bool isSearch(const ZelCascadeSearch* search) {
    return search && search->grey && search->width > 0 && search->height > 0 && search->searchedWidth > 0 &&
           search->searchedHeight > 0 && search->step > 1 && search->smallest > 0;
}

/// The picture at the size at which it is searched, with an even histogram.
cv::Mat searchedPicture(const ZelCascadeSearch& search) {
    // The picture is only read; the library's header has no form for that.
    const cv::Mat whole(search.height, search.width, CV_8UC1, const_cast<unsigned char*>(search.grey));
    const bool reduces =
        std::max(search.searchedWidth, search.searchedHeight) < std::max(search.width, search.height);
    cv::Mat searched;
    cv::resize(whole, searched, {search.searchedWidth, search.searchedHeight}, 0, 0,
               reduces ? cv::INTER_AREA : cv::INTER_LINEAR);
    cv::equalizeHist(searched, searched);
    return searched;
}

}  // namespace

ZelCascade* openCascade(const char* path, char* text, size_t textSize) noexcept {
    ReasonText reason(text, textSize);
    return guarded<ZelCascade*>(reason, nullptr, [&] {
        const QuietLibrary quiet;
        auto cascade = std::make_unique<ZelCascade>();
        if (!path || !cascade->classifier.load(path)) throw std::invalid_argument("is no cascade");
        return cascade.release();
    });
}

int searchCascade(ZelCascade* cascade, const ZelCascadeSearch* search, ZelCascadeBoxes* found, char* text,
                  size_t textSize) noexcept {
    ReasonText reason(text, textSize);
    return guarded(reason, 0, [&] {
        if (found) *found = {};
        if (!cascade || !found || !isSearch(search)) throw std::invalid_argument("an argument is missing");
        const QuietLibrary quiet;
        const ThreadCount loops(0);
        std::vector<cv::Rect> places;
        std::vector<int> votes;
        cascade->classifier.detectMultiScale(searchedPicture(*search), places, votes, search->step,
                                             search->votes, 0, {search->smallest, search->smallest});
        cascade->boxes.clear();
        for (size_t i = 0; i < places.size(); ++i)
            cascade->boxes.push_back({places[i].x, places[i].y, places[i].width, places[i].height, votes[i]});
        *found = {cascade->boxes.data(), cascade->boxes.size()};
        return 1;
    });
}

void closeCascade(ZelCascade* cascade) noexcept {
    delete cascade;
}

}  // namespace zel::module

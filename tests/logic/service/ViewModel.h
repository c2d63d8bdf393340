// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
//
// What a view must show, as a simple model of it.
#pragma once

#include "imagelib/display/MContrast.h"
#include "imagelib/image/MImage.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::tests {

struct Picture {
    int width = 0;
    int height = 0;
    int value = 0;  // of all pixels
    bool operator==(const Picture&) const = default;
};

/// A series of files, or the images that were pushed into a view.
struct SeriesModel {
    /// The numbers that can be opened by path, with those paths.
    std::map<int, std::string> paths;
    /// What is seen at a number; a number without picture fails.
    std::map<int, Picture> pictures;
    int last = -1;
    bool ofFiles = true;

    std::optional<Picture> at(int number) const
    {
        const auto found = pictures.find(number);
        if (found == pictures.end())
            return {};
        return found->second;
    }
    void push(const Picture& picture)
    {
        constexpr int kept = 25;
        pictures[++last] = picture;
        pictures.erase(last - kept);
    }
};

/// The views of all windows and the contrast that each group shares.
class ViewModel {
public:
    static constexpr double noContrast = 2.2250738585072014e-308;

    /// @param window  views of different ones never share a group
    explicit ViewModel(std::string window)
        : _window(std::move(window))
    {
        series.ofFiles = false;
    }
    ~ViewModel() { _leave(); }
    ViewModel(const ViewModel&) = delete;
    ViewModel& operator=(const ViewModel&) = delete;

    bool loaded() const { return index >= 0; }
    /// Would all images of the series that is open leave the view in its group?
    bool uniform() const
    {
        return loaded() && series.ofFiles && series.pictures.begin()->second.width == shown.width &&
               series.pictures.begin()->second.height == shown.height;
    }
    /// Shows a number of the open series. @returns false when that fails
    bool show(int number)
    {
        const std::optional<Picture> picture = series.at(number);
        if (!picture)
            return false;
        const bool sameGroup =
            loaded() && picture->width == shown.width && picture->height == shown.height;
        index = number;
        shown = *picture;
        if (!sameGroup) {
            _leave();
            wavelength = {};
            _group = std::to_string(shown.width) + "_" + std::to_string(shown.height) + _window;
            groups()[_group].insert(this);
            contrasts().try_emplace(_group, firstContrast(shown));
        }
        return true;
    }
    /// Goes n images on. @returns false when there is none
    bool step(int n)
    {
        if (n == 0)
            return show(index);
        const auto& pictures = series.pictures;
        const int wanted = std::clamp(index + n, pictures.begin()->first, series.last);
        auto found = pictures.lower_bound(wanted);
        if (n < 0 && (found == pictures.end() || found->first > wanted))
            --found;  // the first one is not beyond
        return found != pictures.end() && found->first != index && show(found->first);
    }
    bool openFile(const SeriesModel& files, int number)
    {
        if (!files.paths.contains(number) || !files.at(number))
            return false;
        series = files;
        return show(number);
    }
    bool push(const Picture& picture)
    {
        if (series.ofFiles) {
            series = {};
            series.ofFiles = false;
        }
        series.push(picture);
        return show(series.last);
    }
    double contrast() const { return loaded() ? contrasts().at(_group) : _ownContrast; }
    void setContrast(double value) { (loaded() ? contrasts().at(_group) : _ownContrast) = value; }

    SeriesModel series;
    int index = -1;
    Picture shown;
    std::optional<float> wavelength;  // an edit of the header

private:
    static double firstContrast(const Picture& picture)
    {
        using namespace morvend::imglib;
        double foreground = 0, background = 0;
        MContrast(6.0, 10000)(foreground, background,
                              MImage(picture.width, picture.height, picture.value), nullptr);
        return std::trunc(foreground);
    }
    static std::map<std::string, std::set<ViewModel*>>& groups()
    {
        static std::map<std::string, std::set<ViewModel*>> all;
        return all;
    }
    static std::map<std::string, double>& contrasts()
    {
        static std::map<std::string, double> all;
        return all;
    }
    void _leave()
    {
        if (_group.empty())
            return;
        groups()[_group].erase(this);
        if (groups()[_group].empty())
            contrasts().erase(_group);
        _group.clear();
    }

    const std::string _window;
    std::string _group;
    double _ownContrast = noContrast;
};

}  // namespace tarvik::tests

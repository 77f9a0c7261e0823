#include "Figures.h"

#include <algorithm>
#include <cstdio>

namespace vorrano::bench {

void Figures::add(std::string_view row, std::string_view who, std::string_view unit, double value)
{
    auto figure = std::find_if(m_figures.begin(), m_figures.end(),
                               [&](const Figure& other) { return other.row == row && other.who == who; });
    if (figure == m_figures.end()) {
        figure = m_figures.insert(figure, {std::string(row), std::string(who), std::string(unit), {}});
    }
    figure->values.push_back(value);
}

void Figures::print() const
{
    for (const auto& figure : m_figures) {
        std::printf(R"({"row": "%s", "who": "%s", "unit": "%s", "values": [)", figure.row.c_str(), figure.who.c_str(),
                    figure.unit.c_str());
        const char* separator = "";
        for (const auto value : figure.values) {
            std::printf("%s%.6g", separator, value);
            separator = ", ";
        }
        std::printf("]}\n");
    }
}

} // namespace vorrano::bench

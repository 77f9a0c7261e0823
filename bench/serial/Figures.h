#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vorrano::bench {

// What was measured, for scripts/bench --all: a line of JSON for each row and whom it is about.
class Figures {
public:
    void add(std::string_view row, std::string_view who, std::string_view unit, double value);
    void print() const;

private:
    struct Figure {
        std::string row;
        std::string who;
        std::string unit;
        std::vector<double> values;
    };

    std::vector<Figure> m_figures;
};

} // namespace vorrano::bench

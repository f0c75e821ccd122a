// The double array, built literally by its rules: sets of nodes, and a search that tries one cell
// after the other. It is slow and obvious, and the library's fast build is compared with it.

#ifndef TESTS_LITERAL_TRIE_H
#define TESTS_LITERAL_TRIE_H

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "DATWriter.h"

class LiteralTrie {
public:
    struct Cell {
        int base = 0;
        int check = -2;
        int feature = -1;
    };
    using Unit = Dictionary::SInnerDATWUnit;

    explicit LiteralTrie(int alphabet) : m_alphabet(alphabet), m_hint(alphabet + 1) {}

    void add(const std::vector<int>& codes, const std::string& feature) {
        m_keys.push_back(codes);
        m_offsets.push_back(-1);
        m_features[feature].insert(static_cast<int>(m_keys.size()) - 1);
    }

    // The key may be added later.
    void put(const std::string& feature, int key) { m_features[feature].insert(key); }

    void build() {
        m_cells.clear();
        int offset = 0;
        for (const auto& [text, keys] : m_features) {
            for (const int key : keys) {
                if (key > 0 && key < static_cast<int>(m_keys.size())) m_offsets[at(key)] = offset;
            }
            offset += 4 + static_cast<int>(std::strlen(text.c_str()));
        }
        makeUnits();
        std::set<const Unit*, Dictionary::CWriteSort> order;
        for (const Unit* unit : m_units) order.insert(unit);
        int running = 0;
        m_reports = 0;
        for (const Unit* unit : order) {
            running += static_cast<int>(unit->passingKeys.size());
            if (running % 100 == 0) ++m_reports;
            place(*unit);
        }
    }

    // The number of progress lines of the last build, without the closing one.
    int reports() const { return m_reports; }
    int cellCount() const { return m_highest + 1; }
    int firstFreeFrom(int position) {
        while (cell(position).check != -2) ++position;
        return position;
    }

    // The node through which most keys pass; null if there is no node.
    const Unit* widest() const {
        const auto found = std::max_element(
            m_units.begin(), m_units.end(), [](const Unit* left, const Unit* right) {
                return left->passingKeys.size() < right->passingKeys.size();
            });
        return found == m_units.end() ? nullptr : *found;
    }

    int findBase(const Unit& unit) {
        m_hint = firstFreeFrom(m_hint);
        for (int position = m_hint;; ++position) {
            const int base = position - label(unit, *unit.passingKeys.begin());
            bool fits = true;
            for (const int key : unit.passingKeys) {
                const int child = base + label(unit, key);
                fits = fits && child > m_alphabet && cell(child).check == -2;
            }
            if (fits) return base;
        }
    }

    Cell& cell(int index) {
        if (at(index) >= m_cells.size()) m_cells.resize(at(index) + 1);
        return m_cells[at(index)];
    }

private:
    static std::size_t at(int index) { return static_cast<std::size_t>(index); }

    void makeUnits() {
        m_owned.clear();
        m_units.clear();
        for (int key = 1; key < static_cast<int>(m_keys.size()); ++key) {
            const std::vector<int>& codes = m_keys[at(key)];
            for (int depth = 0; depth < static_cast<int>(codes.size()); ++depth) {
                auto made = std::make_unique<Unit>(
                    Unit{{codes.begin(), codes.begin() + depth + 1}, key, depth, {}, {}, -1});
                const auto [found, isNew] = m_units.insert(made.get());
                Unit* unit = *found;
                if (isNew) m_owned.push_back(std::move(made));
                if (depth + 1 < static_cast<int>(codes.size())) {
                    unit->passingKeys.insert(key);
                } else {
                    unit->endingKeys.insert(key);
                    unit->featureOffset = m_offsets[at(key)];
                }
            }
        }
    }

    void place(const Unit& unit) {
        int position = unit.prefix.front();
        for (std::size_t i = 1; i < unit.prefix.size(); ++i) {
            position = std::abs(cell(position).base) + unit.prefix[i];
        }
        m_highest = std::max(m_highest, position);
        if (unit.depth == 0) cell(position).check = -1;
        if (!unit.endingKeys.empty()) {
            if (cell(position).base > 0) cell(position).base *= -1;
            if (cell(position).base == 0) cell(position).base = -*unit.endingKeys.begin();
            cell(position).feature = unit.featureOffset;
        }
        if (unit.passingKeys.empty()) return;
        const int base = findBase(unit);
        cell(position).base = cell(position).base < 0 ? -base : base;
        for (const int key : unit.passingKeys) {
            const int child = base + label(unit, key);
            cell(child).check = position;
            m_highest = std::max(m_highest, child);
        }
    }

    int label(const Unit& unit, int key) const { return m_keys[at(key)][at(unit.depth) + 1]; }

    int m_alphabet;
    int m_hint;
    int m_highest = 0;
    int m_reports = 0;
    std::vector<std::vector<int>> m_keys = {{}};
    std::vector<int> m_offsets = {-1};
    std::map<std::string, std::set<int>> m_features;
    std::vector<std::unique_ptr<Unit>> m_owned;
    std::set<Unit*, Dictionary::CUnitSort> m_units;
    std::vector<Cell> m_cells;
};

#endif

// cli/info.cpp - kbx info: what is in a model, as text and as JSON
#include "cli/commands.h"
#include "cli/load.h"
#include "cli/output.h"
#include "cli/steps.h"
#include "cli/facts/facts.h"
#include "cli/facts/warnings.h"
#include "platform/boxes.h"

#include <stdio.h>
#include <string>
#include <vector>

constexpr int unsoundStatus = 3; // of --check

// 1234567 as 1,234,567
static std::string grouped(int64_t value)
{
    std::string digits = std::to_string(value);
    for (size_t place = digits.size(); place > 3 && digits[place - 4] != '-';)
        digits.insert(place -= 3, ",");
    return digits;
}

static void putTexture(Output* out, const FoundTexture& texture, const char* kind, const char* name)
{
    if (!*name)
        return;
    put(out, "  ");
    put(out, kind);
    put(out, " ");
    putReadableName(out, name);
    if (texture.path.empty())
        put(out, " (missing)");
    else
        put(out, (" (found, " + grouped(texture.sizeBytes) + " bytes)").c_str());
}

static void putCount(Output* out, const char* label, int64_t value, const std::string& remark = {})
{
    char line[128];
    snprintf(line, sizeof line, "  %-22s %13s%s%s", label, grouped(value).c_str(), remark.empty() ? "" : "   ",
             remark.c_str());
    put(out, line);
    endLine(out);
}

static void putAxis(Output* out, char axis, float min, float max)
{
    char line[128];
    snprintf(line, sizeof line, "  %-22c %13.6g .. %-13.6g (size %.6g)", axis, static_cast<double>(min),
             static_cast<double>(max), static_cast<double>(max - min));
    put(out, line);
    endLine(out);
}

static void putMeasure(Output* out, const char* label, double value)
{
    char line[128];
    snprintf(line, sizeof line, "  %-22s %13.6g", label, value);
    put(out, line);
    endLine(out);
}

static void printSoundness(Output* out, const MeshStatistics& statistics)
{
    const SurfaceMeasures& surface = statistics.surface;
    putCount(out, "open edges", statistics.openEdges);
    putCount(out, "non-manifold edges", statistics.nonManifoldEdges);
    putCount(out, "flipped edges", statistics.flippedEdges);
    putCount(out, "degenerate faces", statistics.degenerateFaces);
    putCount(out, "duplicate faces", surface.duplicateFaces);
    putCount(out, "duplicate vertices", statistics.duplicateVertices);
    putCount(out, "pieces", surface.pieces);
    putMeasure(out, "area", surface.area);
    put(out, statistics.closed ? "  closed                           yes" : "  closed                            no");
    endLine(out);
    if (enclosesVolume(statistics))
        putMeasure(out, "volume", surface.volume);
}

// " 5 faces", with the kinds where there are several.
static std::string facesText(const FaceCounts& counts)
{
    std::string text = " " + grouped(allOf(counts)) + " faces";
    if (counts.quads > 0 || counts.lineRecords > 0)
        text += " (" + grouped(counts.triangles) + " triangles, " + grouped(counts.quads) + " quads, " +
                grouped(counts.lineRecords) + " line records)";
    return text;
}

static void printFacts(Output* out, const std::string& path, const LoadedModel& model, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    put(out, path.c_str());
    endLine(out);
    putCount(out, "vertices", mesh->vertexCount);
    putCount(out, "texture coordinates", facts.uvs);
    putCount(out, "faces", mesh->liveFaceCount,
             grouped(facts.all.triangles) + " triangles, " + grouped(facts.all.quads) + " quads");
    putCount(out, "lines", mesh->lineCount);
    if (facts.hidden)
        putCount(out, "hidden by the filter", facts.hidden);
    for (int axis = 0; axis < 3; ++axis)
        putAxis(out, "xyz"[axis], mesh -> boundsMin[axis], mesh -> boundsMax[axis]);
    printSoundness(out, facts.statistics);
    putCount(out, "groups", mesh->groupCount);
    for (int32_t g = 0; g < mesh->groupCount; ++g)
    {
        put(out, "    ");
        putReadableName(out, mesh->groupNames[g]);
        put(out, facesText(facts.groups[static_cast<size_t>(g)]).c_str());
        endLine(out);
    }
    putCount(out, "materials", mesh->materialCount);
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        put(out, "    ");
        putReadableName(out, mesh->materialNames[m]);
        put(out, facesText(facts.materials[static_cast<size_t>(m)]).c_str());
        putTexture(out, model.textures.textures[static_cast<size_t>(m)], "texture", mesh->textureNames[m]);
        putTexture(out, model.textures.opacities[static_cast<size_t>(m)], "opacity", mesh->opacityNames[m]);
        endLine(out);
    }
}

// An answer in a line of its own is printed at once: who reads them need not wait for the last file.
static void takeAnswer(std::string&& answer, bool inOneLine, Output* out, std::vector<std::string>* answers)
{
    if (!inOneLine)
    {
        answers->push_back(std::move(answer));
        return;
    }
    put(out, answer.c_str());
    endLine(out);
    passOnOutput(out);
}

// Reads one file and adds its answer. Returns its exit status.
static int inspect(const std::string& path, const Arguments& arguments, Output* out, std::vector<std::string>* answers)
{
    LoadedModel model;
    Facts facts;
    bool read = loadModel(&model, path, arguments.load, false);
    Step step = { arguments.load.verbose };
    if (read && !gatherFacts(model.mesh, &facts))
    {
        model.error = "out of memory";
        explainFailure(path.c_str(), model.error.c_str());
        read = false;
    }
    if (read)
        endStep(&step, path, "measured");
    if (arguments.json || arguments.jsonLines)
    {
        bool inOneLine = arguments.jsonLines;
        std::string answer =
            read ? factsAsJson(path, model, facts, inOneLine) : errorAsJson(path, model.error, inOneLine);
        takeAnswer(std::move(answer), inOneLine, out, answers);
    }
    else if (read)
    {
        if (out->lines > 0)
            endLine(out);
        printFacts(out, path, model, facts);
    }
    freeMesh(model.mesh);
    if (!read || (arguments.load.strict && hasWarnings(model.report)))
        return 1;
    std::string faults = arguments.check ? faultsOf(facts.statistics) : "";
    if (!faults.empty())
        explainFailure(path.c_str(), ("not sound: " + faults).c_str());
    return faults.empty() ? 0 : unsoundStatus;
}

// The answers as one object, or as an array of them.
static void putAnswers(Output* out, const std::vector<std::string>& answers)
{
    if (answers.size() == 1)
        put(out, answers[0].c_str());
    for (size_t i = 0; answers.size() > 1 && i < answers.size(); ++i)
    {
        put(out, i == 0 ? "[\n  " : ",\n  ");
        for (char c : answers[i]) // no text of JSON contains a line end
            out->pending += c == '\n' ? std::string("\n  ") : std::string(1, c);
        flushOutput(out);
    }
    put(out, answers.size() > 1 ? "\n]" : "");
    endLine(out);
}

int runInfo(const Arguments& arguments)
{
    Output out;
    std::vector<std::string> answers;
    int status = 0;
    for (const std::string& path : arguments.inputs)
    {
        int one = inspect(path, arguments, &out, &answers);
        status = status == 1 || one == 0 ? status : one; // a file that failed counts for more than one that is unsound
    }
    if (arguments.json)
        putAnswers(&out, answers);
    return finishOutput(&out) ? status : 1;
}

// cli/info.cpp - kbx info: what is in a model, as text and as JSON
#include "cli/commands.h"
#include "cli/load.h"
#include "cli/output.h"
#include "cli/warnings.h"
#include "platform/boxes.h"
#include "tools/statistics.h"

#include <nlohmann/json.hpp>
#include <stdio.h>
#include <string.h>

using Json = nlohmann::ordered_json;

struct Facts
{
    MeshStatistics statistics = {};
    int32_t triangles = 0;
    int32_t quads = 0;
    int32_t lineRecords = 0;
    int32_t hidden = 0;
    std::vector<int32_t> groupFaces;
    std::vector<int32_t> materialFaces;
};

static void countFaces(const Mesh* mesh, Facts* counted)
{
    Facts& facts = *counted;
    facts.groupFaces.resize(groupLimit);
    facts.materialFaces.resize(materialLimit);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            continue;
        ++facts.groupFaces[faceGroup(attributes)];
        ++facts.materialFaces[faceMaterial(attributes)];
        facts.hidden += (attributes & faceHidden) != 0;
        if (attributes & faceLine)
            ++facts.lineRecords;
        else if (cornerCount(mesh->faces[f]) == 4)
            ++facts.quads;
        else
            ++facts.triangles;
    }
}

// Returns 0 after "Out of memory".
static int gatherFacts(const Mesh* mesh, Facts* facts)
{
    countFaces(mesh, facts);
    return gatherStatistics(mesh, &facts->statistics);
}

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
    put(out, texture.path.empty() ? " (missing)" : " (found)");
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

static void printFacts(Output* out, const std::string& path, const LoadedModel& model, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    put(out, path.c_str());
    endLine(out);
    putCount(out, "vertices", mesh->vertexCount);
    putCount(out, "texture coordinates", mesh->uvCount);
    putCount(out, "faces", mesh->liveFaceCount,
             grouped(facts.triangles) + " triangles, " + grouped(facts.quads) + " quads");
    putCount(out, "lines", mesh->lineCount);
    if (facts.hidden)
        putCount(out, "hidden by the filter", facts.hidden);
    for (int axis = 0; axis < 3; ++axis)
        putAxis(out, "xyz"[axis], mesh -> boundsMin[axis], mesh -> boundsMax[axis]);
    putCount(out, "open edges", facts.statistics.openEdges);
    putCount(out, "non-manifold edges", facts.statistics.nonManifoldEdges);
    putCount(out, "degenerate faces", facts.statistics.degenerateFaces);
    putCount(out, "duplicate vertices", facts.statistics.duplicateVertices);

    putCount(out, "groups", mesh->groupCount);
    for (int32_t g = 0; g < mesh->groupCount; ++g)
    {
        put(out, "    ");
        putReadableName(out, mesh->groupNames[g]);
        put(out, (" " + grouped(facts.groupFaces[static_cast<size_t>(g)]) + " faces").c_str());
        endLine(out);
    }
    putCount(out, "materials", mesh->materialCount);
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        put(out, "    ");
        putReadableName(out, mesh->materialNames[m]);
        put(out, (" " + grouped(facts.materialFaces[static_cast<size_t>(m)]) + " faces").c_str());
        putTexture(out, model.textures.textures[static_cast<size_t>(m)], "texture", mesh->textureNames[m]);
        putTexture(out, model.textures.opacities[static_cast<size_t>(m)], "opacity", mesh->opacityNames[m]);
        endLine(out);
    }
}

static Json jsonOf(const float (&values)[3])
{
    return Json::array({ values[0], values[1], values[2] });
}

static Json textureJson(const FoundTexture& texture, const char* name)
{
    if (!*name)
        return nullptr;
    if (texture.path.empty())
        return { { "name", name }, { "found", false } };
    return { { "name", name }, { "found", true }, { "file", texture.path }, { "bytes", texture.sizeBytes } };
}

static Json placeJson(int64_t byte, int64_t line)
{
    Json place = Json::object();
    if (line > 0)
        place["line"] = line;
    else if (byte >= 0)
        place["byte"] = byte;
    return place;
}

static Json warningsJson(const Report& report)
{
    Json warnings = Json::array();
    for (int i = 0; i < reportKindCount; ++i)
    {
        auto kind = static_cast<ReportKind>(i);
        const ReportEntry& entry = report.entries[i];
        if (entry.count == 0)
            continue;
        Json warning = { { "kind", reportKey(kind) }, { "count", entry.count }, { "text", warningText(report, kind) } };
        warning.update(placeJson(entry.firstByte, entry.firstLine));
        if (report.namedKind == kind && report.nameCount > 0)
        {
            Json names = Json::array();
            for (int32_t n = 0; n < report.nameCount; ++n)
                names.push_back({ { "name", report.names[n].name }, { "count", report.names[n].count } });
            warning["names"] = names;
        }
        warnings.push_back(warning);
    }
    return warnings;
}

static Json materialJson(const LoadedModel& model, int32_t m, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    const Material& material = mesh->materials[m];
    return {
        { "name", mesh->materialNames[m] },
        { "faces", facts.materialFaces[static_cast<size_t>(m)] },
        { "ambient", jsonOf(material.ambient) },
        { "diffuse", jsonOf(material.diffuse) },
        { "specular", jsonOf(material.specular) },
        { "ambientLevel", material.ambientLevel },
        { "diffuseLevel", material.diffuseLevel },
        { "specularLevel", material.specularLevel },
        { "shininess", material.shininess },
        { "transparency", material.transparency },
        { "texture", textureJson(model.textures.textures[static_cast<size_t>(m)], mesh->textureNames[m]) },
        { "opacity", textureJson(model.textures.opacities[static_cast<size_t>(m)], mesh->opacityNames[m]) },
    };
}

static Json jsonFacts(const std::string& path, const LoadedModel& model, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    Json groups = Json::array();
    for (int32_t g = 0; g < mesh->groupCount; ++g)
        groups.push_back({ { "name", mesh->groupNames[g] }, { "faces", facts.groupFaces[static_cast<size_t>(g)] } });
    Json materials = Json::array();
    for (int32_t m = 0; m < mesh->materialCount; ++m)
        materials.push_back(materialJson(model, m, facts));
    return {
        { "file", path },
        { "name", mesh->name },
        { "vertices", mesh->vertexCount },
        { "uvs", mesh->uvCount },
        { "lines", mesh->lineCount },
        { "faces", mesh->liveFaceCount },
        { "faceSlots", mesh->faceCount },
        { "triangles", facts.triangles },
        { "quads", facts.quads },
        { "lineRecords", facts.lineRecords },
        { "hidden", facts.hidden },
        { "bounds", { { "min", jsonOf(mesh->boundsMin) }, { "max", jsonOf(mesh->boundsMax) } } },
        { "centre", jsonOf(mesh->centre) },
        { "radius", mesh->radius },
        { "openEdges", facts.statistics.openEdges },
        { "nonManifoldEdges", facts.statistics.nonManifoldEdges },
        { "degenerateFaces", facts.statistics.degenerateFaces },
        { "duplicateVertices", facts.statistics.duplicateVertices },
        { "groups", groups },
        { "materials", materials },
        { "warnings", warningsJson(model.report) },
    };
}

// Reads one file and answers for it. Returns whether it was read, and with --strict without a warning.
static bool inspect(const std::string& path, const Arguments& arguments, Output* out, Json* all)
{
    LoadedModel model;
    Facts facts;
    bool read = loadModel(&model, path, arguments.load);
    if (read && !gatherFacts(model.mesh, &facts))
    {
        model.error = "out of memory";
        explainFailure(path.c_str(), model.error.c_str());
        read = false;
    }
    if (arguments.json)
        all->push_back(read ? jsonFacts(path, model, facts) : Json{ { "file", path }, { "error", model.error } });
    else if (read)
    {
        if (out->lines > 0)
            endLine(out);
        printFacts(out, path, model, facts);
    }
    freeMesh(model.mesh);
    return read && !(arguments.load.strict && hasWarnings(model.report));
}

int runInfo(const Arguments& arguments)
{
    Output out;
    Json all = Json::array();
    bool allRead = true;
    for (const std::string& path : arguments.inputs)
        allRead &= inspect(path, arguments, &out, &all);
    if (arguments.json)
    {
        const Json& answer = arguments.inputs.size() == 1 ? all[0] : all;
        put(&out, answer.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
        endLine(&out);
    }
    return finishOutput(&out) && allRead ? 0 : 1;
}

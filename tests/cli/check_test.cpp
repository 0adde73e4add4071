// tests/cli/check_test.cpp - kbx info: what it measures, and --check
#include "tests/cli/kbx_fixture.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::json;

class KbxCheck : public Kbx
{
protected:
    // A tetrahedron with its faces turned outward, then other lines.
    void writeTetrahedron(const std::string& name, const std::string& more = "")
    {
        write(name, "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n" + more + "f 1 3 2\nf 1 2 4\nf 2 3 4\nf 1 4 3\n");
    }
    Json infoOf(const std::string& name)
    {
        return Json::parse(run("info --json " + name).out);
    }
};

TEST_F(KbxCheck, ASoundSurfaceHasAnAreaAndAVolume)
{
    writeTetrahedron("a.obj", "g one\nusemtl red\n");
    Json info = infoOf("a.obj");
    EXPECT_EQ(info["closed"], true);
    EXPECT_NEAR(info["volume"].get<double>(), 1.0 / 6, 1e-9);
    EXPECT_NEAR(info["area"].get<double>(), 1.5 + sqrt(3.0) / 2, 1e-9);
    EXPECT_EQ(info["pieces"], 1);
    EXPECT_EQ(info["flippedEdges"], 0);
    EXPECT_EQ(info["duplicateFaces"], 0);
    EXPECT_EQ(info["uvs"], 0); // the placeholder is none
    EXPECT_EQ(info["groups"][0],
              Json::parse(R"({"name": "one", "faces": 4, "triangles": 4, "quads": 0, "lineRecords": 0})"));
    EXPECT_EQ(info["materials"][0]["triangles"], 4);
    Result result = run("info --check a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST_F(KbxCheck, EachFaultEndsWithThreeAndIsNamed)
{
    struct Fault
    {
        std::string model, words;
    };
    const std::string points = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\n";
    const Fault faults[] = {
        { points + "f 1 3 2\nf 1 2 4\nf 2 3 4\nl 1 2\n", "3 open edges" },
        { points + "f 1 2 3\nf 1 2 4\nf 2 3 4\nf 1 4 3\n", "3 flipped edges" },
        { points + "v 0 0 1\nf 1 3 2\nf 1 2 4\nf 2 3 4\nf 1 4 3\n", "1 duplicate vertex" },
        { points + "f 1 3 2\nf 1 2 4\nf 2 3 4\nf 1 4 3\nf 3 1 2\n", "3 non-manifold edges, 1 duplicate face" },
        { "v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n", "3 open edges, 1 degenerate face" },
    };
    for (const Fault& fault : faults)
    {
        write("a.obj", fault.model);
        Result result = run("info --check a.obj");
        EXPECT_EQ(result.status, 3) << fault.words;
        EXPECT_EQ(result.err, "kbx: a.obj: not sound: " + fault.words + "\n");
        EXPECT_EQ(run("info a.obj").status, 0);
        EXPECT_EQ(infoOf("a.obj")["volume"].is_null(), fault.words != "1 duplicate vertex") << fault.words;
    }
}

TEST_F(KbxCheck, AFileThatFailsCountsForMoreThanOneThatIsNotSound)
{
    writeTetrahedron("a.obj");
    write("open.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    EXPECT_EQ(run("info --check a.obj open.obj").status, 3);
    EXPECT_EQ(run("info --check open.obj a.obj").status, 3);
    EXPECT_EQ(run("info --check open.obj missing.obj").status, 1);
    EXPECT_EQ(run("info --check missing.obj open.obj").status, 1);
}

TEST_F(KbxCheck, TexturesHaveTheirSizes)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\nmap_Kd here.jpg\nmap_d gone.jpg\n");
    write("here.jpg", "any bytes");
    Json material = infoOf("square.obj")["materials"][0];
    EXPECT_EQ(material["texture"],
              Json::parse(R"({"name": "here.jpg", "found": true, "file": "here.jpg", "bytes": 9})"));
    EXPECT_EQ(material["opacity"], Json::parse(R"({"name": "gone.jpg", "found": false})"));
}

// A key that is cut into chunks, as the schedulers take it.
#pragma once

#include <string>
#include <vector>

namespace veloxa {

struct Job {
    std::string name;                // letters, digits and ._- alone
    std::string folder;              // absolute; relative names of the options begin there
    std::string program;             // what runs as veloxa: a name to look for, or an absolute path
    std::vector<std::string> words;  // key's options as they were given, without --chunk
    int chunks = 1;
    int frames = 1;
    int threads = 0;  // as given; 0 where they were not
    int grace = 20;   // seconds that frames under way get after SIGTERM
};

inline constexpr int kMostChunks = 1000;  // an array of Slurm's has 1001 numbers unless it is told otherwise

// How many chunks so many frames are cut into where that many are wanted, 0 for as many as they call for.
int chunks_for(int wanted, int frames);

// A batch script whose array has one task a chunk. A task that ends with what may pass submits itself again.
std::string slurm_script(const Job& job);

// A job template of the Open Job Description, revision 2023-09, as JSON, which is YAML too; one task a chunk.
// Throws UsageError for a folder whose name is not UTF-8.
std::string openjd_template(const Job& job);

// Goals all and chunk-0 to chunk-N.
std::string makefile(const Job& job);

}  // namespace veloxa

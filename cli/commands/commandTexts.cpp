#include "cli/commands/commandTexts.h"

#include "cli/commands/wrapText.h"

namespace zelcli {

const char* const kProgramSummary = "portrait effects on picture files";

const char* const kProgramDetails =
    "Retouches portraits: reads JPEG, PNG, TIFF, WebP, HEIF, AVIF, JPEG 2000 and GIF files (and BMP, TGA, "
    "PSD, HDR, "
    "PIC and PNM), runs effects of the library, and writes JPEG, PNG, TIFF, WebP or AVIF. Pictures are "
    "turned upright; "
    "EXIF, XMP, captions, comments, resolution and colour profile go with them, and colours beyond sRGB stay "
    "where an "
    "effect leaves them alone. What a format cannot carry is told.\n\n"
    "Standard output carries results only. Progress and messages go to standard error, one line each. An "
    "output is written as a whole or not at all: where the work fails, an existing file stays as it was.";

const std::vector<std::pair<int, const char*>> kExitStatuses = {
    {0, "all is done"},
    {1, "some work failed; a line says which file and why, and the other inputs were processed"},
    {2, "the command was not understood; nothing was done"},
};

const std::vector<CommandText>& commandTexts() {
    static const std::vector<CommandText> texts = {
        {"effects",
         "List every effect, its parameters with range and default",
         "The list goes to standard output; with --json it is made for scripts. With names it tells more "
         "about these "
         "effects.",
         {{"Read what there is", "zel effects"},
          {"One effect in full", "zel effects nature-smooth"},
          {"The names alone, in a script", "zel effects --json | jq -r '.effects[].name'"}}},
        {"apply",
         "Run effects on pictures",
         "The suffix of OUT chooses the format: .png, .tif, .webp and .avif keep transparency, .jpg puts the "
         "picture on "
         "white. A JPEG output has the quality and the colour subsampling of its input where that is JPEG "
         "too, and 95 "
         "and full colour otherwise.\n\n"
         "Several effects are joined by +: each has the --set, --mask, --second, --cube and --depth that "
         "stand with it. "
         "The picture is read once, searched for faces once and written once. --save-recipe keeps such a "
         "chain, "
         "--recipe takes it.\n\n"
         "With several inputs or a folder OUT is a folder, made where it is missing; outputs there are "
         "called like "
         "their inputs. A failing input does not stop the others, and the last line says what was done. An "
         "interrupt "
         "ends the run between two pictures; --resume goes on there. An output never takes the place of an "
         "input, but "
         "with --in-place.\n\n"
         "A mask is a picture of the same size: white where the effect works fully, black where it does "
         "not.\n\n"
         "Effects that work on faces find them where --faces gives none. A picture without a face fails "
         "where an effect "
         "needs one; with --no-face skip it is left out, with --no-face copy such effects leave it as it "
         "is.\n\n"
         "-- ends the options, for names that begin with -. zel apply EFFECT --help tells the parameters of "
         "one effect.",
         {{"Smooth a portrait and look at both side by side",
           "zel apply nature-smooth portrait.jpg -o smooth.jpg --compare sheet.png"},
          {"Turn two knobs", "zel apply bright portrait.png -o clear.png --set radius=8 --set level=3"},
          {"Three effects in one go",
           "zel apply auto-face-inpaint + nature-smooth --set radius=8 + scenario portrait.jpg "
           "-o out.jpg --save-recipe mine.json"},
          {"The same for a folder and all below it",
           "zel apply --recipe mine.json photos -o out --recursive"},
          {"On from where an interrupt came",
           "zel apply --recipe mine.json photos -o out --recursive --resume"},
          {"A whole portrait in one call, with a look of your own",
           "zel apply scenario portrait.jpg -o out.jpg --set alpha=0.6 --cube mylook.cube"},
          {"Repair spots, and see where skin was found",
           "zel apply auto-face-inpaint portrait.jpg -o clean.jpg --mask-out skin.png"}}},
        {"faces",
         "Find faces and their landmarks",
         "Writes face data for zel apply --faces: for each face a rectangle, the 83 landmarks as fractions "
         "of "
         "the picture, and a confidence from 0 to 1; the largest face comes first. A picture without a face "
         "gives an empty list and a note, and is no failure.\n\n"
         "--overlay draws what the effects make of the landmarks: every point with its number. With several "
         "inputs FACES.json and PNG are folders, made where they are missing, for NAME.json and "
         "NAME-faces.png.\n\n"
         "Networks find faces wherever they look, where scripts/networks has set them up; the environment "
         "variable ZEL_NETWORKS may name another folder with them. Without them a built-in finder sees faces "
         "that look at the camera and lean by no more than about 40 degrees. It needs the package "
         "opencv-data; "
         "ZEL_CASCADES may name another folder with its files.",
         {{"Find the faces, look at them, retouch them",
           "zel faces portrait.jpg -o faces.json --overlay faces.png"},
          {"Use the data", "zel apply auto-slim-face portrait.jpg -o slim.jpg --faces faces.json"},
          {"Face data for a whole folder", "zel faces photos/*.jpg -o faces/ --jobs 2"}}},
        {"depth",
         "Estimate the depth of pictures",
         "Writes a grey picture of the input's size: the brighter, the nearer. A network estimates a coarse "
         "map, "
         "which is then fitted to the picture's edges; --raw leaves that out. A person mask, of any size, "
         "brings the person forward as a whole. Where none is given, networks that scripts/networks has set "
         "up "
         "make one of the people whose face is about as large as the largest; --person-mask shows it, and "
         "--set subject=none leaves it out.\n\n"
         "Another network may take the place of the built-in one: an ONNX file with one float input of "
         "1 x 3 x H x W (blue, green, red; 0 to 1) and the outputs confidence and depth, or depth alone.",
         {{"The depth of a portrait, and a sheet to look at",
           "zel depth portrait.jpg -o depth.png --compare sheet.png"},
          {"The people of a folder of pictures, as masks",
           "zel depth photos/*.jpg -o depth/ --person-mask masks/ --set subject=person"},
          {"With a person mask, by a network of your own",
           "zel depth portrait.jpg -o depth.png --mask person.png --set model=mine.onnx"}}},
        {"portrait",
         "Draw the built-in synthetic portrait",
         "The same seed and settings give the same picture. Its landmarks are known exactly and can be "
         "written "
         "as face data for zel apply --faces.",
         {{"A portrait with its face data",
           "zel portrait -o portrait.png --faces portrait.json --size 900x1200 --seed 7"},
          {"The truth beside it: clean picture, masks, depth",
           "zel portrait -o portrait.png --seed 7 --set moles=12 --truth truth/"}}},
        {"recipe",
         "Show what recipes do",
         "Prints the effects and values of recipes, as zel apply --save-recipe writes them: small files of "
         "JSON that "
         "may be edited and shared. A folder stands for the .json files in it. Files that a recipe names lie "
         "beside it.",
         {{"Read a recipe", "zel recipe mine.json"}}},
        {"help",
         "Tell about a command or an effect",
         "Without a word it tells about the program.",
         {{"A command", "zel help apply"}, {"An effect", "zel help auto-slim-face"}}},
        {"completion",
         "Print what a shell completes",
         "cmake --install puts these where bash, zsh and fish look for them.",
         {{"For this session of bash", "eval \"$(zel completion bash)\""}}},
        {"networks",
         "Tell which networks are there, where, and what each is for",
         "The list goes to standard output, with the state of each: ready; missing; or unusable, where its "
         "file is "
         "damaged or another one, or nothing is installed that could run it. A line below it says what is "
         "wrong and "
         "what brings the missing ones. Without networks the built-in finder looks for faces.",
         {{"Look", "zel networks"},
          {"Those that are not ready, in a script",
           "zel networks --json | jq -r '.networks[] | select(.state != \"ready\").name'"}}},
        {"studio",
         "Retouch the pictures of a folder in the browser",
         "Serves a page to the browser of this machine alone, and prints its address, which holds a secret: "
         "whoever knows it can see and write pictures in the folder, so keep it to yourself. Nothing else on "
         "the "
         "machine is read or written, and nothing leaves the machine. It ends with Ctrl-C.",
         {{"The pictures of a folder", "zel studio photos/"},
          {"On a machine without a desktop: the address alone", "zel studio photos/ --no-browser"}}},
    };
    return texts;
}

const CommandText& commandText(const std::string& name) {
    for (const auto& text : commandTexts())
        if (name == text.name) return text;
    return commandTexts().front();
}

std::string helpFooter(const CommandText& text) {
    std::string footer(text.details);
    footer += "\n\nExamples:";
    for (const auto& example : text.examples)
        footer.append("\n  ").append(example.what).append(":\n    ").append(example.command);
    return wrapText(footer);
}

}  // namespace zelcli

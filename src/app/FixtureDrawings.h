#pragma once

// How each made-up screenshot is drawn: its canvas, its background, its drawing and the texts on
// it that a reader should find.

#include "app/Canvas.h"
#include "app/Fixtures.h"

#include <string>
#include <vector>

namespace lumivale::FixtureDrawings {

struct Drawing {
    double w = 0; // points
    double h = 0;
    uint32_t bg = 0xFFFFFF;
    void (*draw)(Canvas&) = nullptr;
    std::vector<std::string> quoted;
};

// The drawing of one kind.
const Drawing& of(Fixture::Kind kind);

// Paper documents and pictures.
void idCard(Canvas& c);
void passport(Canvas& c);
void receipt(Canvas& c);
void hardwareReceipt(Canvas& c);
void trainTicket(Canvas& c);
void recipe(Canvas& c);
void sunset(Canvas& c);

// Phone screens and desktop windows.
void upiPayment(Canvas& c);
void boardingPass(Canvas& c);
void movieTicket(Canvas& c);
void chat(Canvas& c);
void groupChat(Canvas& c);
void code(Canvas& c);
void terminal(Canvas& c);
void shopping(Canvas& c);
void map(Canvas& c);

} // namespace lumivale::FixtureDrawings

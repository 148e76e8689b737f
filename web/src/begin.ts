// Read before the page is drawn, so that it never shows another theme first.
import { beginDisplay } from "./display.ts";

beginDisplay();

// The page that the server shows instead of a missing page.

import { setText } from "./dom.js";
import { startLanguage } from "./page_language.js";

startLanguage();
const address = document.getElementById("address");
setText(address.querySelector("bdi"), location.pathname);
address.hidden = false;

// The page that stands in place of one that this server does not have.

import { setText } from "./dom.js";
import { startLanguage } from "./page_language.js";

startLanguage();
const address = document.getElementById("address");
setText(address.querySelector("bdi"), location.pathname);
address.hidden = false;
